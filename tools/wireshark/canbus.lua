-- The serial link between the head unit and its interface box, for Wireshark and tshark.
--
-- It dissects recordings of link type USER0 (147) with one packet for each block of bytes, as
-- `canbus-monitor --record` writes them. README.md beside this file tells how to use it.
--
-- What the box sends and what is sent to it stands in the tables below. Positions in them count the bytes of
-- DATA from 0, and bits from the least significant.

local DLE, STX, ETX, ACK, NACK = 0x9F, 0x02, 0x03, 0x06, 0x15

-- Longer ones never reach the head unit: it throws everything away beyond this.
local LONGEST_FRAME = 2048

-- id, TP, MOD and the check byte
local SHORTEST_CONTENT = 4

local SENT, RECEIVED, UNKNOWN = 0, 1, 2 -- as the head unit sees it; the first two as in frame.p2p_dir
local DIRECTIONS = { [SENT] = "sent", [RECEIVED] = "received", [UNKNOWN] = "unknown" }
local ARROWS = { [SENT] = "->", [RECEIVED] = "<-", [UNKNOWN] = "--" }
local PARTIES = { [SENT] = { "head unit", "box" }, [RECEIVED] = { "box", "head unit" } }

local LOOP_BACK_ANSWER = "716151413121"

---------------------------------------------------------------------------------------------------------
-- How items are read: each kind gives a list of { value, position, size }
---------------------------------------------------------------------------------------------------------

local function byte_at(data, position)
    return data:byte(position + 1) or 0
end

local function bits_at(data, position, bit, width)
    return math.floor(byte_at(data, position) / 2 ^ bit) % 2 ^ width
end

-- The bytes of one character of UTF-8 at `i`, or nil where none begins.
local function character_at(bytes, i)
    local lead = bytes:byte(i)
    if lead < 0x80 then
        return 1
    end
    local size = lead >= 0xF0 and 4 or lead >= 0xE0 and 3 or 2
    if lead < 0xC2 or lead > 0xF4 or not bytes:find("^" .. ("[\128-\191]"):rep(size - 1), i + 1) then
        return nil
    end
    local second = bytes:byte(i + 1)
    local least = ({ [0xE0] = 0xA0, [0xF0] = 0x90 })[lead] or 0x80 -- nothing longer than it need be
    local most = ({ [0xED] = 0x9F, [0xF4] = 0x8F })[lead] or 0xBF -- no surrogates, nothing above 10FFFF
    return second >= least and second <= most and size or nil
end

-- As the head unit reads UTF-8: without a mark of byte order, each byte that is none replaced.
local function utf8_text(bytes, replacement)
    local parts = {}
    local i = bytes:sub(1, 3) == "\239\187\191" and 4 or 1
    while i <= #bytes do
        local size = character_at(bytes, i)
        parts[#parts + 1] = size and bytes:sub(i, i + size - 1) or replacement
        i = i + (size or 1)
    end
    return table.concat(parts)
end

local REPLACEMENT = "\239\191\189"

local function cleaned_text(bytes)
    return (utf8_text(bytes, ""):gsub(REPLACEMENT, ""))
end

local function number_item(name, field_type, read, position, size)
    return {
        name = name,
        type = field_type,
        read = function(data)
            return { { read(data), position, size or 1 } }
        end,
    }
end

local function byte(name, position)
    return number_item(name, "uint8", function(data)
        return byte_at(data, position)
    end, position)
end

local function word(name, position)
    return number_item(name, "uint16", function(data)
        return byte_at(data, position) * 0x100 + byte_at(data, position + 1)
    end, position, 2)
end

local function flag(name, position, bit)
    return number_item(name, "bool", function(data)
        return bits_at(data, position, bit, 1) == 1
    end, position)
end

local function state(name, position, bit, width, most)
    return number_item(name, "uint8", function(data)
        local value = bits_at(data, position, bit, width)
        return value <= most and value or 0
    end, position)
end

local function state2(name, position, bit)
    return state(name, position, bit, 2, 3)
end

local function state3(name, position, bit)
    return state(name, position, bit, 3, 6)
end

local function state4(name, position, bit)
    return state(name, position, bit, 4, 8)
end

local function title(name, position)
    return {
        name = name,
        type = "string",
        read = function(data)
            local text = data:sub(position + 1):match("^%Z*")
            return { { cleaned_text(text), position, #text } }
        end,
    }
end

local function texts(name, position)
    return {
        name = name,
        type = "string",
        read = function(data)
            local all = {}
            for from, text in data:sub(position + 1):gmatch("()(%Z*)%z") do
                all[#all + 1] = { cleaned_text(text), position + from - 1, #text }
            end
            return all
        end,
    }
end

-- Two characters, then up to ten times three; what is not whole at the end is no entry.
local function scale(name)
    return {
        name = name,
        type = "string",
        read = function(data)
            local all = {}
            local from, size = 0, 2
            while from < 32 and from + size <= #data do
                local text = data:sub(from + 1, from + size):match("^%Z*")
                all[#all + 1] = { utf8_text(text, REPLACEMENT), from, #text }
                from, size = from + size, 3
            end
            return all
        end,
    }
end

-- Entries NAME.1, NAME.2 ...: a position, or a position and a bit, for each.
local function each(kind, name, places)
    local items = {}
    for i, place in ipairs(places) do
        local position, bit = place, nil
        if type(place) == "table" then
            position, bit = place[1], place[2]
        end
        items[i] = kind(name .. "." .. i, position, bit)
    end
    return items
end

---------------------------------------------------------------------------------------------------------
-- From the box: TP, then MOD
---------------------------------------------------------------------------------------------------------

local CATEGORIES = {
    [0x01] = {
        name = "Version",
        object = "version",
        any = { least = 0, byte("ready", 1) },
    },
    [0x02] = {
        name = "ScreensInfo",
        object = "screens",
        any = { least = 0, each(flag, "supported", { { 0, 0 }, { 0, 1 }, { 0, 2 }, { 0, 3 }, { 0, 4 } }) },
    },
    [0x03] = {
        name = "Climate",
        object = "climate",
        [0] = { least = 2, byte("type", 0), title("title", 1) },
        [1] = { least = 1, texts("labels", 0) },
        [2] = {
            least = 15,
            word("mainTemp", 0),
            word("secondTemp", 2),
            state2("mainUnit", 4, 6),
            state2("secondUnit", 4, 4),
            state4("leftHeatedSeat", 6, 4),
            state4("rightHeatedSeat", 6, 0),
            state4("leftCooledSeat", 7, 4),
            state4("rightCooledSeat", 7, 0),
            byte("fanDirectValue", 8),
            state2("fanSpeedStatus", 9, 6),
            state4("ventPosition", 10, 4),
            state2("fanDirect", 12, 0),
            flag("systemOn", 13, 4),
            flag("driverSeat", 13, 5),
            byte("manualTemp", 14),
            -- The last two stand the other way round than all others.
            each(state2, "button", {
                { 4, 2 }, { 4, 0 }, { 5, 6 }, { 5, 4 }, { 5, 2 }, { 5, 0 }, { 9, 4 }, { 9, 2 }, { 9, 0 },
                { 10, 2 }, { 10, 0 }, { 11, 6 }, { 11, 4 }, { 11, 2 }, { 11, 0 }, { 12, 6 }, { 12, 4 },
                { 12, 2 }, { 13, 0 }, { 13, 2 },
            }),
        },
    },
    [0x04] = {
        name = "Gauges",
        object = "gauges",
        [0] = { least = 2, each(flag, "type", { { 0, 0 }, { 0, 1 }, { 0, 2 }, { 0, 3 } }), title("title", 1) },
        [1] = { least = 1, texts("labels", 0) },
        [2] = { least = 2, scale("scale"), texts("centerTexts", 32) },
        [3] = { least = 1, texts("topTexts", 0) },
        [4] = { least = 1, texts("bottomTexts", 0) },
        [5] = {
            least = 13,
            each(byte, "value", { 1, 5, 7, 9, 11 }),
            each(byte, "zeroPosition", { 0, 4, 6, 8, 10 }),
            flag("shift", 2, 0),
            each(flag, "format", { { 2, 1 }, { 2, 2 }, { 2, 3 }, { 2, 4 }, { 2, 5 } }),
            state2("labelState1", 2, 6),
            state2("labelState2", 3, 0),
            state3("peakColor", 3, 2),
            texts("valueTexts", 12),
        },
    },
    [0x05] = {
        name = "Vehicle",
        object = "vehicle",
        [0] = { least = 1, title("title", 0) },
        [1] = { least = 1, texts("labels", 0) },
        [2] = {
            least = 3,
            each(flag, "door", { { 0, 0 }, { 0, 1 }, { 0, 2 }, { 0, 3 } }),
            flag("hood", 0, 4),
            flag("trunk", 0, 5),
            each(state2, "tire", { { 1, 0 }, { 1, 2 }, { 1, 4 }, { 1, 6 } }),
            state2("checkEngine", 2, 0),
            flag("battery", 2, 2),
            state2("labelState1", 2, 4),
            state2("labelState2", 2, 6),
            texts("tireTexts", 3),
        },
    },
    [0x06] = {
        name = "ParkingAssist",
        object = "parking",
        [0] = { least = 1, title("title", 0) },
        [1] = { least = 1, texts("labels", 0) },
        [2] = {
            least = 17,
            each(byte, "front", { 0, 1, 2, 3 }),
            each(byte, "rear", { 4, 5, 6, 7 }),
            each(byte, "left", { 8, 9, 10, 11 }),
            each(byte, "right", { 12, 13, 14, 15 }),
            state2("labelState1", 16, 0),
            state2("labelState2", 16, 2),
            each(flag, "sensor", { { 16, 4 }, { 16, 5 }, { 16, 6 }, { 16, 7 } }),
        },
    },
    [0x07] = {
        name = "ScreensTransition",
        object = "screens",
        any = { least = 0, byte("transition", 0) },
    },
    [0x11] = {
        name = "TextScreen",
        object = "textScreen",
        any = {
            least = 0,
            each(byte, "menu", { 0, 1, 2, 3 }),
            flag("minus", 4, 0),
            flag("plus", 4, 1),
            texts("texts", 5),
        },
    },
}

---------------------------------------------------------------------------------------------------------
-- To the box: TP, then the first byte of DATA where it tells the commands apart
---------------------------------------------------------------------------------------------------------

-- A button that reports its release too, one that reports presses alone.
local function press_and_release(code, name)
    return { code = code, name = name, presses = { [0] = true, [1] = true } }
end

local function tap(code, name)
    return { code = code, name = name, presses = { [1] = true } }
end

local CONNECTIONS = {
    [0] = { code = "connect request", name = "connection.request" },
    [1] = { code = "connection check", name = "connection.check" },
}

-- The head unit's general button command sends a release of any of them.
local CLIMATE_BUTTONS = {
    press_and_release("OnOff", "climate.onOff"),
    press_and_release("RearZone", "climate.rearZone"),
    press_and_release("AutoMainZoneTempPlus", "climate.autoMainZoneTempPlus"),
    press_and_release("AutoMainZoneTempMinus", "climate.autoMainZoneTempMinus"),
    press_and_release("AutoSecondZoneTempPlus", "climate.autoSecondZoneTempPlus"),
    press_and_release("AutoSecondZoneTempMinus", "climate.autoSecondZoneTempMinus"),
    press_and_release("ManualMainZoneTempUp", "climate.manualMainZoneTempUp"),
    press_and_release("ManualMainZoneTempDown", "climate.manualMainZoneTempDown"),
    press_and_release("LeftHeatedSeat", "climate.leftHeatedSeat"),
    press_and_release("RightHeatedSeat", "climate.rightHeatedSeat"),
    press_and_release("LeftCooledSeat", "climate.leftCooledSeat"),
    press_and_release("RightCooledSeat", "climate.rightCooledSeat"),
    press_and_release("AutoFanDirectValue", "climate.autoFanDirectValue"),
    press_and_release("Auto", "climate.autoBtn"),
    press_and_release("VentPosition", "climate.ventPos"),
    press_and_release("RecirculatedFreshAir", "climate.recircFresh"),
    press_and_release("Dual", "climate.dualBtn"),
    press_and_release("AirConditioning", "climate.acBtn"),
    press_and_release("MaxAirConditioning", "climate.maxACBtn"),
    press_and_release("FrontDefroster", "climate.frontDefroster"),
    press_and_release("RearDefroster", "climate.rearDefroster"),
    press_and_release("CustomControl1", "climate.customControl1"),
    press_and_release("CustomControl2", "climate.customControl2"),
    press_and_release("HeatedSteeringWheel", "climate.heatedSteerWheel"),
    press_and_release("FanSpeedUp", "climate.fanSpeedUp"),
    press_and_release("FanSpeedDown", "climate.fanSpeedDown"),
    press_and_release("ManualTemp", "climate.manualTemp"),
    press_and_release("ManualFanSpeed", "climate.manualFanSpeed"),
}

local GAUGES_BUTTONS = {
    press_and_release("Center", "gauges.Gauge1_CenterGauge"),
    press_and_release("TopLeft", "gauges.Gauge2_TopLeft"),
    press_and_release("TopRight", "gauges.Gauge3_TopRight"),
    press_and_release("BottomLeft", "gauges.Gauge4_BottomLeft"),
    press_and_release("BottomRight", "gauges.Gauge5_BottomRight"),
    tap("CustomControl1", "gauges.customControl1"),
    tap("CustomControl2", "gauges.customControl2"),
}

local VEHICLE_BUTTONS = {
    tap("CheckEngine", "vehicle.checkEngine"),
    tap("CustomControl1", "vehicle.customControl1"),
    tap("CustomControl2", "vehicle.customControl2"),
}

local PARKING_BUTTONS = {
    tap("CustomControl1", "parking.customControl1"),
    tap("CustomControl2", "parking.customControl2"),
}

local PAGES = {
    [0] = { code = "Normal", name = "player.requestNormal" },
    [1] = { code = "Climate", name = "climate.requestClimateInfo" },
    [2] = { code = "Gauges", name = "gauges.requestGaugesInfo" },
    [3] = { code = "Vehicle", name = "vehicle.requestVehicleInfo" },
    [4] = { code = "ParkingAssist", name = "parking.requestParkInfo" },
}

-- `rows` are looked up by the value of the argument `by`.
local COMMANDS = {
    [0x01] = { name = "Connection", arguments = { "reserved", "connection" }, by = "connection", rows = CONNECTIONS },
    [0x91] = { name = "MenuPress", arguments = { "menu", "item", "action" }, operation = "player.onMenuPress" },
    [0x92] = { name = "Settings", arguments = { "value" }, operation = "settings" },
    [0x93] = {
        name = "ClimateButton",
        arguments = { "button", "press", "value" },
        by = "button",
        rows = CLIMATE_BUTTONS,
    },
    [0x94] = { name = "GaugesButton", arguments = { "button", "press" }, by = "button", rows = GAUGES_BUTTONS },
    [0x95] = { name = "VehicleButton", arguments = { "button", "press" }, by = "button", rows = VEHICLE_BUTTONS },
    [0x96] = { name = "ParkingButton", arguments = { "button", "press" }, by = "button", rows = PARKING_BUTTONS },
    [0x97] = { name = "RequestData", arguments = { "page" }, by = "page", rows = PAGES },
    [0x98] = {
        name = "Time",
        arguments = { "minute", "hour", "day", "month", "yearFirst2", "yearLast2", "format" },
        operation = "player.syncGPSTimeToCanbus",
    },
}

-- The arguments whose byte must be 0; all others may be anything, or say so in their row.
local ZERO_ARGUMENTS = { [0x01] = "reserved", [0x92] = "value" }

-- The categories whose id tells whose settings are meant.
local SETTINGS_OWNERS = { [0x03] = true, [0x04] = true, [0x05] = true, [0x06] = true }

---------------------------------------------------------------------------------------------------------
-- Fields
---------------------------------------------------------------------------------------------------------

local canbus = Proto("canbus", "CAN-bus box")

local function names_of(rows)
    local names = {}
    for key, row in pairs(rows) do
        names[key] = row.name
    end
    return names
end

local function codes_of(rows)
    local codes = {}
    for key, row in pairs(rows) do
        codes[key] = row.code
    end
    return codes
end

local ANSWERS = { [ACK] = "ACK", [NACK] = "NACK" }
local CHECKS = { [0] = "Bad", [1] = "Good" }
local READINESS = { [0] = "not ready", [1] = "ready" }
local TRANSITIONS = { [0] = "touch 15", [1] = "touch 83", [2] = "touch 81", [3] = "touch 82", [4] = "touch 84" }

local f = {
    direction = ProtoField.uint8("canbus.direction", "Direction", base.DEC, DIRECTIONS),
    id = ProtoField.uint8("canbus.id", "Id", base.HEX),
    tp = ProtoField.uint8("canbus.tp", "TP", base.HEX),
    category = ProtoField.uint8("canbus.category", "Category", base.HEX, names_of(CATEGORIES)),
    command = ProtoField.uint8("canbus.command", "Command", base.HEX, names_of(COMMANDS)),
    mod = ProtoField.uint8("canbus.mod", "MOD", base.DEC),
    data = ProtoField.bytes("canbus.data", "Data"),
    checksum = ProtoField.uint8("canbus.checksum", "Check byte", base.HEX),
    checksum_status = ProtoField.uint8("canbus.checksum.status", "Check byte's status", base.DEC, CHECKS),
    answer = ProtoField.uint8("canbus.answer", "Answer", base.HEX, ANSWERS),
    answer_to = ProtoField.framenum("canbus.answer_to", "Answer to the frame in", base.NONE, frametype.REQUEST),
    answer_in = ProtoField.framenum("canbus.answer_in", "Answered in", base.NONE, frametype.RESPONSE),
    response_time = ProtoField.relative_time("canbus.response_time", "Time since the frame"),
    retransmission_of = ProtoField.framenum("canbus.retransmission_of", "First sent in", base.NONE),
    begins_in = ProtoField.framenum("canbus.begins_in", "Begins in", base.NONE),
    continued_in = ProtoField.framenum("canbus.continued_in", "Continued, and ends in", base.NONE),
    bytes = ProtoField.bytes("canbus.bytes", "Bytes"),
    command_name = ProtoField.string("canbus.command.name", "Operation"),
}

local argument_fields = {
    reserved = ProtoField.uint8("canbus.command.reserved", "reserved", base.DEC),
    connection = ProtoField.uint8("canbus.command.connection", "connection", base.DEC, codes_of(CONNECTIONS)),
    button = ProtoField.uint8("canbus.command.button", "button", base.DEC),
    press = ProtoField.bool("canbus.command.press", "press"),
    value = ProtoField.uint8("canbus.command.value", "value", base.DEC),
    page = ProtoField.uint8("canbus.command.page", "page", base.DEC, codes_of(PAGES)),
    menu = ProtoField.uint8("canbus.command.menu", "menu", base.DEC),
    item = ProtoField.uint8("canbus.command.item", "item", base.DEC),
    action = ProtoField.uint8("canbus.command.action", "action", base.DEC),
    minute = ProtoField.uint8("canbus.command.minute", "minute", base.DEC),
    hour = ProtoField.uint8("canbus.command.hour", "hour", base.DEC),
    day = ProtoField.uint8("canbus.command.day", "day", base.DEC),
    month = ProtoField.uint8("canbus.command.month", "month", base.DEC),
    yearFirst2 = ProtoField.uint8("canbus.command.yearFirst2", "yearFirst2", base.DEC),
    yearLast2 = ProtoField.uint8("canbus.command.yearLast2", "yearLast2", base.DEC),
    format = ProtoField.uint8("canbus.command.format", "format", base.DEC),
}

local VALUE_NAMES = { ["canbus.version.ready"] = READINESS, ["canbus.screens.transition"] = TRANSITIONS }

local function item_field(object, item)
    local name = "canbus." .. object .. "." .. item.name
    if item.type == "bool" or item.type == "string" then
        return ProtoField[item.type](name, item.name)
    end
    return ProtoField[item.type](name, item.name, base.DEC, VALUE_NAMES[name])
end

-- The rows of a sub-type in one list, each with its field. Items of one name share a field.
local function prepare(object, subtype, by_name)
    local items = {}
    local function add(item)
        local name = object .. "." .. item.name
        by_name[name] = by_name[name] or item_field(object, item)
        item.field = by_name[name]
        items[#items + 1] = item
    end
    for _, row in ipairs(subtype) do
        if row.read then
            add(row)
        else
            for _, item in ipairs(row) do
                add(item)
            end
        end
    end
    subtype.items = items
end

local function all_fields()
    local fields = {}
    local by_name = {}
    for _, category in pairs(CATEGORIES) do
        for key, subtype in pairs(category) do
            if key == "any" or type(key) == "number" then
                prepare(category.object, subtype, by_name)
            end
        end
    end
    for _, group in ipairs({ f, argument_fields, by_name }) do
        for _, field in pairs(group) do
            fields[#fields + 1] = field
        end
    end
    return fields
end

canbus.fields = all_fields()

local e = {
    bad_check = ProtoExpert.new("canbus.bad_check", "The check byte is wrong: the frame is dropped",
        expert.group.CHECKSUM, expert.severity.ERROR),
    broken = ProtoExpert.new("canbus.broken", "A broken frame", expert.group.PROTOCOL, expert.severity.ERROR),
    stray = ProtoExpert.new("canbus.stray", "Bytes outside a frame", expert.group.PROTOCOL, expert.severity.WARN),
    early_end = ProtoExpert.new("canbus.early_end", "9F 03 inside: the head unit takes it for the end of the frame",
        expert.group.PROTOCOL, expert.severity.WARN),
    too_short = ProtoExpert.new("canbus.too_short", "Too short: the head unit ignores it",
        expert.group.PROTOCOL, expert.severity.WARN),
    unknown_subtype = ProtoExpert.new("canbus.unknown_subtype", "Unknown MOD: the head unit ignores it",
        expert.group.UNDECODED, expert.severity.WARN),
    unknown_category = ProtoExpert.new("canbus.unknown_category", "Unknown category: the head unit ignores it",
        expert.group.UNDECODED, expert.severity.NOTE),
    unknown_command = ProtoExpert.new("canbus.unknown_command", "Nothing that an operation of the head unit sends",
        expert.group.UNDECODED, expert.severity.NOTE),
    unreadable_answer = ProtoExpert.new("canbus.unreadable_answer",
        "The id 9F is not doubled: the head unit does not understand this answer",
        expert.group.PROTOCOL, expert.severity.WARN),
    retransmission = ProtoExpert.new("canbus.retransmission", "Sent again",
        expert.group.SEQUENCE, expert.severity.NOTE),
    unanswered = ProtoExpert.new("canbus.unanswered", "Not answered in this recording",
        expert.group.SEQUENCE, expert.severity.NOTE),
    incomplete = ProtoExpert.new("canbus.incomplete", "Incomplete: the recording ends before the frame does",
        expert.group.SEQUENCE, expert.severity.NOTE),
}

local function all_experts()
    local experts = {}
    for _, item in pairs(e) do
        experts[#experts + 1] = item
    end
    return experts
end

canbus.experts = all_experts()

canbus.prefs.repeat_within = Pref.uint("Sent again within (ms)", 1000,
    "The same bytes that long after their last transmission, and not answered, count as sent again")

---------------------------------------------------------------------------------------------------------
-- Frames in a stream of bytes
---------------------------------------------------------------------------------------------------------

local function begins_frame(mark)
    return mark == STX or mark == ACK or mark == NACK
end

-- Where the next frame begins at or behind `from`, or nil.
local function next_start(bytes, from)
    local i = bytes:find("\159", from, true)
    while i and not begins_frame(bytes:byte(i + 1)) do
        i = bytes:find("\159", i + 1, true)
    end
    return i
end

-- Reads the frame that begins at `start`. Nil: it goes on behind `bytes`. Else its last byte, and what is
-- wrong with it.
local function frame_end(bytes, start)
    local most = bytes:byte(start + 1) ~= STX and 2
    local count = 0
    local i = start + 2
    while i <= #bytes do
        local after = bytes:byte(i + 1)
        local escaped = bytes:byte(i) == DLE
        if i - start >= LONGEST_FRAME - 1 then
            return i - 1, "no end within 2048 bytes"
        elseif escaped and after == ETX then
            return i + 1
        elseif escaped and after == nil then
            return nil
        elseif escaped and after ~= DLE then
            return begins_frame(after) and i - 1 or i + 1, ("9F in front of %02X inside a frame"):format(after)
        elseif count == most then
            return i - 1, "an answer is the id twice and the end"
        end
        count = count + 1
        i = i + (escaped and 2 or 1)
    end
    return nil
end

-- Cuts `bytes` into frames and what is none. @return the pieces, and how many bytes they hold: what is
-- behind them is the beginning of a frame that is not complete
local function scan(bytes)
    local pieces = {}
    local function add(kind, first, last, problem)
        pieces[#pieces + 1] = { kind = kind, first = first, raw = bytes:sub(first, last), problem = problem }
    end
    local i = 1
    while i <= #bytes do
        local start = next_start(bytes, i)
        if not start then
            local last = bytes:byte(-1) == DLE and #bytes - 1 or #bytes
            if last >= i then
                add("stray", i, last)
            end
            return pieces, last
        end
        if start > i then
            add("stray", i, start - 1)
        end
        local last, problem = frame_end(bytes, start)
        if not last then
            return pieces, start - 1
        end
        add(problem and "broken" or "frame", start, last, problem)
        i = last + 1
    end
    return pieces, #bytes
end

local function xor_of(bytes)
    local sum = 0
    for i = 1, #bytes do
        local value, sum_left, bit, result = bytes:byte(i), sum, 1, 0
        while bit < 256 do
            if value % 2 ~= sum_left % 2 then
                result = result + bit
            end
            value, sum_left, bit = math.floor(value / 2), math.floor(sum_left / 2), bit * 2
        end
        sum = result
    end
    return sum
end

-- The content between the marks, without doubled escapes, and where each byte of it begins in `raw`.
local function unescaped(raw)
    local content, places = {}, {}
    local i = 3
    while i <= #raw - 2 do
        content[#content + 1] = raw:sub(i, i)
        places[#places + 1] = i
        i = i + (raw:byte(i) == DLE and 2 or 1)
    end
    places[#places + 1] = #raw - 1
    return table.concat(content), places
end

local function read_data_frame(frame, content)
    frame.kind = "data"
    frame.id, frame.tp, frame.mod = content:byte(1, 3)
    frame.data = content:sub(4, -2)
    frame.check = content:byte(-1)
    frame.expected_check = xor_of(content:sub(1, -2))
    frame.good = frame.check == frame.expected_check
    frame.early_end = (frame.raw:find("\159\003", 3, true)) ~= #frame.raw - 1
end

local function read_answer(frame, content)
    frame.kind = "answer"
    frame.mark = frame.raw:byte(2)
    frame.id = content:byte(1)
    frame.check = content:byte(2)
    frame.expected_check = frame.id
    frame.undoubled = #content == 1
    frame.good = frame.undoubled or frame.check == frame.id
end

-- What stands in a frame that has both of its marks.
local function read_frame(frame)
    local content
    content, frame.places = unescaped(frame.raw)
    if frame.raw:byte(2) ~= STX then
        if #content == 1 and content:byte() ~= DLE then
            frame.kind, frame.problem = "broken", "the id stands once in the answer"
        else
            read_answer(frame, content)
        end
    elseif #content < SHORTEST_CONTENT then
        frame.kind, frame.problem = "broken", "shorter than id, TP, MOD and check byte"
    else
        read_data_frame(frame, content)
    end
end

---------------------------------------------------------------------------------------------------------
-- What is known across packets: worked out when a packet is seen for the first time
---------------------------------------------------------------------------------------------------------

local packets -- by number: { direction, pieces, tail }
local streams -- by direction: { rest, begins_in, tails }
local chains -- by direction and id: the transmissions of the last frame
local owners -- by id: the category of the box that used it last

function canbus.init()
    packets, chains, owners, streams = {}, { [SENT] = {}, [RECEIVED] = {} }, {}, {}
    for direction in pairs(DIRECTIONS) do
        streams[direction] = { rest = "", tails = {} }
    end
end

local function is_repetition(chain, frame)
    return chain and chain.raw == frame.raw and not chain.answered_in
        and frame.time - chain.last.time <= canbus.prefs.repeat_within * 1000
end

local function note_data_frame(frame, direction)
    local known = chains[direction]
    if not known or not frame.good then
        return
    end
    if direction == RECEIVED then
        owners[frame.id] = frame.tp
    end
    frame.owner = owners[frame.id]
    local chain = known[frame.id]
    if is_repetition(chain, frame) then
        frame.retransmission_of = chain.number
    else
        chain = { raw = frame.raw, number = frame.number }
        known[frame.id] = chain
    end
    chain.last = frame
    frame.chain = chain
end

-- A NACK of the head unit answers nothing: it says that the end of a frame is awaited.
local function answers_something(frame, direction)
    if direction == RECEIVED then
        return frame.good and frame.id and not frame.undoubled
    end
    return direction == SENT and frame.good and frame.id and frame.mark == ACK
end

local function note_answer(frame, direction)
    if not answers_something(frame, direction) then
        return
    end
    local chain = chains[direction == SENT and RECEIVED or SENT][frame.id]
    if chain and not chain.answered_in then
        chain.answered_in = frame.number
        frame.answer_to = chain.last.number
        frame.response_us = frame.time - chain.last.time
    end
end

local function note_piece(piece, direction)
    if piece.kind == "frame" then
        read_frame(piece)
    end
    if piece.kind == "data" then
        note_data_frame(piece, direction)
    elseif piece.kind == "answer" then
        note_answer(piece, direction)
    end
end

-- Keeps what begins at `offset` of this packet, or in one before it, for the next one.
-- @return this packet's part of it, if it has one
local function keep_rest(stream, rest, offset, number, size)
    stream.rest = rest
    if offset >= 0 then
        stream.begins_in = number
    end
    if math.max(offset, 0) >= size then
        return nil
    end
    local tail = { offset = math.max(offset, 0) }
    stream.tails[#stream.tails + 1] = tail
    return tail
end

local function end_tails(stream, number)
    for _, tail in ipairs(stream.tails) do
        tail.ends_in = number
    end
    stream.tails = {}
end

-- @param time  in microseconds
local function take_packet(number, direction, time, bytes)
    local stream = streams[direction]
    local carried = #stream.rest
    local all = stream.rest .. bytes
    local pieces, used = scan(all)
    if used > 0 then
        end_tails(stream, number)
    end
    for _, piece in ipairs(pieces) do
        piece.offset = piece.first - 1 - carried
        piece.begins_in = piece.offset < 0 and stream.begins_in or number
        piece.number, piece.time = number, time
        note_piece(piece, direction)
    end
    local tail = keep_rest(stream, all:sub(used + 1), used - carried, number, #bytes)
    return { direction = direction, pieces = pieces, tail = tail }
end

---------------------------------------------------------------------------------------------------------
-- What is shown of a frame. `view` is the piece's place: its tvb and where it begins there
---------------------------------------------------------------------------------------------------------

local function view_of(piece, tvb)
    if piece.offset >= 0 then
        return { tvb = tvb, offset = piece.offset, piece = piece }
    end
    return { tvb = ByteArray.new(piece.raw, true):tvb("Reassembled"), offset = 0, piece = piece }
end

-- `size` bytes of the content from its byte `from`, counted from 0, as they stand on the line.
local function content_range(view, from, size)
    local places = view.piece.places
    local first = places[math.min(from + 1, #places)]
    local last = places[math.min(from + size + 1, #places)]
    return view.tvb:range(view.offset + first - 1, last - first)
end

local function whole_range(view)
    return view.tvb:range(view.offset, #view.piece.raw)
end

local function show_generated(tree, field, value)
    tree:add(field, value):set_generated()
end

local function show_check(tree, view)
    local piece = view.piece
    if piece.check then
        local place = #piece.places - 2
        local item = tree:add(f.checksum, content_range(view, place, 1), piece.check)
        if not piece.good then
            item:append_text((", should be 0x%02x"):format(piece.expected_check))
        end
        show_generated(item, f.checksum_status, piece.good and 1 or 0)
    end
    if not piece.good then
        tree:add_proto_expert_info(e.bad_check)
    end
end

local function show_data_bytes(tree, view)
    local data = view.piece.data
    local range = content_range(view, 3, #data)
    if #data == range:len() then
        tree:add(f.data, range)
    else
        tree:add(f.data, ByteArray.new(data, true):tvb("Unescaped data"):range())
    end
end

local function text_of(value)
    if type(value) == "string" then
        return '"' .. value:gsub("%c", " ") .. '"'
    end
    if type(value) == "boolean" then
        return value and "1" or "0"
    end
    return ("%d"):format(value)
end

-- The first items only: the column is for a glance.
local function shortened(words)
    local text = ""
    for _, word_of_all in ipairs(words) do
        if #text + #word_of_all > 60 then
            return text .. " ..."
        end
        text = text .. " " .. word_of_all
    end
    return text
end

local function show_value(tree, view, field, value, position, size)
    local there = math.min(#view.piece.data - position, size)
    if there > 0 or (size == 0 and there == 0) then
        return tree:add(field, content_range(view, position + 3, there), value)
    end
    return tree:add(field, value):set_generated() -- a byte that is missing reads as 0
end

local function show_items(tree, view, subtype)
    local words = {}
    for _, item in ipairs(subtype.items) do
        for _, found in ipairs(item.read(view.piece.data)) do
            local value, position, size = found[1], found[2], found[3]
            show_value(tree, view, item.field, value, position, size)
            words[#words + 1] = item.name .. " " .. text_of(value)
        end
    end
    return shortened(words)
end

local function show_category(tree, view)
    local piece = view.piece
    local category = CATEGORIES[piece.tp]
    if not category then
        tree:add_proto_expert_info(e.unknown_category)
        return ("category %02X"):format(piece.tp)
    end
    local subtype = category.any or category[piece.mod]
    local name = category.any and category.name or ("%s %d"):format(category.object, piece.mod)
    if not piece.good then
        return name
    end
    if not subtype then
        tree:add_proto_expert_info(e.unknown_subtype)
        return name .. " [unknown MOD]"
    end
    if #piece.data < subtype.least then
        tree:add_proto_expert_info(e.too_short)
        return name .. " [too short]"
    end
    return name .. ":" .. show_items(tree, view, subtype)
end

-- The bytes of DATA by the names of the command's arguments, as far as they go.
local function arguments_of(command, data)
    local arguments = {}
    for i, name in ipairs(command.arguments) do
        arguments[name] = data:byte(i)
    end
    return arguments
end

local function owner_of_settings(piece)
    return SETTINGS_OWNERS[piece.owner] and CATEGORIES[piece.owner].object .. "." or ""
end

-- The operation of the head unit that sends this, or nil.
local function operation_of(piece, command, arguments)
    local zero = ZERO_ARGUMENTS[piece.tp]
    if piece.mod ~= 0 or #piece.data ~= #command.arguments or (zero and arguments[zero] ~= 0) then
        return nil
    end
    if not command.by then
        return command.name == "Settings" and owner_of_settings(piece) .. "settings" or command.operation
    end
    local row = command.rows[arguments[command.by]]
    if row and (not row.presses or row.presses[arguments.press]) then
        return row.name
    end
    return nil
end

local function show_argument(tree, view, command, name, position)
    local value = view.piece.data:byte(position + 1)
    if not value then
        return
    end
    local shown = value
    if name == "press" then
        shown = value ~= 0
    end
    local item = tree:add(argument_fields[name], content_range(view, position + 3, 1), shown)
    local row = name == "button" and command.rows[value]
    if row then
        item:append_text(" (" .. row.code .. ")")
    end
end

local function time_text(arguments)
    if arguments.minute == 255 then
        return " unknown"
    end
    return (" %02d%02d-%02d-%02d %02d:%02d"):format(arguments.yearFirst2, arguments.yearLast2, arguments.month,
        arguments.day, arguments.hour, arguments.minute)
end

local function argument_text(command, arguments)
    if command.name == "Time" then
        return time_text(arguments)
    end
    local text = ""
    for _, name in ipairs(command.arguments) do
        local value = arguments[name]
        if name == "press" then
            text = text .. (value ~= 0 and " press" or " release")
        elseif name ~= command.by and not (name == "value" and value == 0) and name ~= "reserved" then
            text = text .. (" %s %d"):format(name, value)
        end
    end
    return text
end

local function show_command(tree, view)
    local piece = view.piece
    local command = COMMANDS[piece.tp]
    if not piece.good then
        return command and command.name or ("command %02X"):format(piece.tp)
    end
    local arguments = command and arguments_of(command, piece.data)
    local operation = command and operation_of(piece, command, arguments)
    tree:add(f.command_name, content_range(view, 1, 1), operation or "unknown")
    if not operation then
        tree:add_proto_expert_info(e.unknown_command)
    end
    for i, name in ipairs(command and command.arguments or {}) do
        show_argument(tree, view, command, name, i - 1)
    end
    if not operation then
        return ("unknown command %02X"):format(piece.tp)
    end
    return operation .. argument_text(command, arguments)
end

local function show_transmission(tree, piece, direction, visited)
    if piece.early_end and direction ~= SENT then
        tree:add_proto_expert_info(e.early_end)
    end
    if piece.retransmission_of then
        tree:add_proto_expert_info(e.retransmission)
        show_generated(tree, f.retransmission_of, piece.retransmission_of)
    end
    local chain = piece.chain
    if chain and chain.answered_in then
        show_generated(tree, f.answer_in, chain.answered_in)
    elseif chain and visited then
        tree:add_proto_expert_info(e.unanswered)
    end
end

-- Without a direction in the recording the numbers tell: the head unit's lie above the box's.
local function is_command(piece, direction)
    return direction == SENT or (direction == UNKNOWN and piece.tp >= 0x80)
end

local function show_data_frame(tree, view, direction, visited)
    local piece = view.piece
    local command = is_command(piece, direction)
    tree:add(f.id, content_range(view, 0, 1), piece.id)
    tree:add(f.tp, content_range(view, 1, 1), piece.tp)
    tree:add(command and f.command or f.category, content_range(view, 1, 1), piece.tp)
    tree:add(f.mod, content_range(view, 2, 1), piece.mod)
    show_data_bytes(tree, view)
    local text = (command and show_command or show_category)(tree, view)
    show_check(tree, view)
    show_transmission(tree, piece, direction, visited)
    text = ARROWS[direction] .. " " .. text
    if not piece.good then
        text = text .. " [bad check byte]"
    end
    return piece.retransmission_of and text .. " [again]" or text
end

local function show_response(tree, piece)
    if not piece.answer_to then
        return ""
    end
    show_generated(tree, f.answer_to, piece.answer_to)
    local seconds = math.floor(piece.response_us / 1e6)
    show_generated(tree, f.response_time, NSTime.new(seconds, (piece.response_us - seconds * 1e6) * 1000))
    return (" (%.1f ms)"):format(piece.response_us / 1000)
end

local function show_answer(tree, view, direction)
    local piece = view.piece
    local item = tree:add(f.answer, view.tvb:range(view.offset + 1, 1), piece.mark)
    local text = ANSWERS[piece.mark]
    if piece.id then
        tree:add(f.id, content_range(view, 0, 1), piece.id)
        text = ("%s %02X"):format(text, piece.id)
        if not piece.undoubled then
            show_check(tree, view)
        end
    end
    if piece.undoubled and direction == RECEIVED then
        tree:add_proto_expert_info(e.unreadable_answer)
    end
    if piece.mark == NACK and direction == SENT then
        item:append_text(": the end of a frame is awaited")
    end
    text = text .. show_response(tree, piece)
    return piece.good and text or text .. " [bad check byte]"
end

local function show_stray(tree, view)
    local loop_back = view.piece.raw == LOOP_BACK_ANSWER
    tree:add(f.bytes, whole_range(view))
    if loop_back then
        tree:add_proto_expert_info(e.stray, "The answer of the loop-back test")
        return "loop-back answer"
    end
    tree:add_proto_expert_info(e.stray)
    return ("%d bytes outside a frame"):format(#view.piece.raw)
end

local function show_broken(tree, view)
    tree:add(f.bytes, whole_range(view))
    tree:add_proto_expert_info(e.broken, "A broken frame: " .. view.piece.problem)
    return "broken frame: " .. view.piece.problem
end

local SHOWN = { data = show_data_frame, answer = show_answer, stray = show_stray, broken = show_broken }

local function show_piece(piece, tvb, tree, direction, visited)
    local view = view_of(piece, tvb)
    local subtree = tree:add(canbus, whole_range(view))
    subtree:add(f.direction, direction):set_generated()
    if piece.offset < 0 then
        show_generated(subtree, f.begins_in, piece.begins_in)
    end
    local text = SHOWN[piece.kind](subtree, view, direction, visited)
    subtree:append_text(": " .. text)
    return text
end

-- What a later pass knows, the first one cannot: whether anything follows.
local function show_tail(tail, tvb, tree, direction, visited)
    local subtree = tree:add(canbus, tvb:range(tail.offset))
    subtree:add(f.direction, direction):set_generated()
    subtree:add(f.bytes, tvb:range(tail.offset))
    local text = ARROWS[direction] .. " part of a frame"
    if tail.ends_in then
        show_generated(subtree, f.continued_in, tail.ends_in)
        text = text .. (" [continued in %d]"):format(tail.ends_in)
    elseif visited then
        subtree:add_proto_expert_info(e.incomplete)
        text = text .. " [incomplete]"
    end
    subtree:append_text(": " .. text)
    return text
end

local function show_columns(columns, direction, texts_of_all)
    columns.protocol:set("CANBUS")
    columns.info:set(table.concat(texts_of_all, "; "))
    local parties = PARTIES[direction]
    if parties then
        columns.src:set(parties[1])
        columns.dst:set(parties[2])
    end
end

function canbus.dissector(tvb, pinfo, tree)
    local packet = packets[pinfo.number]
    if not packet then
        local direction = PARTIES[pinfo.p2p_dir] and pinfo.p2p_dir or UNKNOWN
        local time = math.floor(pinfo.abs_ts * 1e6 + 0.5)
        packet = take_packet(pinfo.number, direction, time, tvb:raw())
        packets[pinfo.number] = packet
    end
    local shown = {}
    for _, piece in ipairs(packet.pieces) do
        shown[#shown + 1] = show_piece(piece, tvb, tree, packet.direction, pinfo.visited)
    end
    if packet.tail then
        shown[#shown + 1] = show_tail(packet.tail, tvb, tree, packet.direction, pinfo.visited)
    end
    show_columns(pinfo.cols, packet.direction, shown)
    return tvb:len()
end

DissectorTable.get("wtap_encap"):add(wtap.USER0, canbus)

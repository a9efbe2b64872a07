std = "lua52"
max_line_length = 120
read_globals = {
    "ByteArray", "DissectorTable", "NSTime", "Pref", "Proto", "ProtoExpert", "ProtoField",
    "base", "expert", "frametype", "wtap",
}

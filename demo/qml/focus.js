.pragma library

// The way of the keyboard's focus over what can be pressed.

function collect(item, found) {
    if (!item.visible || !item.enabled)
        return
    if (item.takesFocus)
        found.push(item)
    for (let i = 0; i < item.children.length; ++i)
        collect(item.children[i], found)
}

function centerIn(root, item) {
    return item.mapToItem(root, item.width / 2, item.height / 2)
}

// How far `to` is from `from` in the direction, and what it is off to the side counts double; -1: not there.
function distance(from, to, dx, dy) {
    const along = (to.x - from.x) * dx + (to.y - from.y) * dy
    const aside = Math.abs((to.x - from.x) * dy) + Math.abs((to.y - from.y) * dx)
    return along > 4 ? along + 2 * aside : -1
}

function next(root, current, dx, dy) {
    const all = []
    collect(root, all)
    if (all.indexOf(current) < 0)
        return all[0]
    const from = centerIn(root, current)
    let best = current
    let least = -1
    for (const item of all) {
        const far = distance(from, centerIn(root, item), dx, dy)
        if (far >= 0 && (least < 0 || far < least)) {
            best = item
            least = far
        }
    }
    return best
}

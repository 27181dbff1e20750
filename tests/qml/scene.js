.pragma library

/// The first item under @p root, in painting order, for which @p accepts is true; null without one.
function search(root, accepts) {
    const children = root.children || root.contentItem.children
    for (let i = 0; i < children.length; ++i) {
        if (accepts(children[i]))
            return children[i]
        const deeper = search(children[i], accepts)
        if (deeper)
            return deeper
    }
    return null
}

/// The item of that object name anywhere under @p root, an item or a window; delegates and popups too.
function find(root, name) {
    return search(root, item => item.objectName === name)
}

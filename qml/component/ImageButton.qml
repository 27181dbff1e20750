IconButton {
    property string source

    text: "NoLabel"
    icon.source: source
    outlined: down
}

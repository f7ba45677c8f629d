import QtQuick

// Texts come from the device, so markup is shown as plain text.
Text {
    textFormat: Text.PlainText
    color: Theme.text
    elide: Text.ElideRight
    font.family: "Noto Sans"
    font.pixelSize: Theme.body
    horizontalAlignment: Text.AlignLeft // right-to-left names, too, start beside the icon or artwork
    verticalAlignment: Text.AlignVCenter
    maximumLineCount: 1
    Accessible.ignored: true
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}

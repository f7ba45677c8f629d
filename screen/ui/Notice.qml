import QtQuick

// A page's message in place of its content.
Column {
    property string icon
    property string title
    property string text

    spacing: Theme.gap * 2
    Accessible.role: Accessible.StaticText
    Accessible.name: title + ". " + text

    Icon {
        anchors.horizontalCenter: parent.horizontalCenter
        name: parent.icon
        color: Theme.quiet
        size: Theme.touch
    }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: parent.title
        font.pixelSize: Theme.title
        font.weight: Font.DemiBold
        wrapMode: Text.Wrap
        maximumLineCount: 2
    }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        text: parent.text
        color: Theme.quiet
        wrapMode: Text.Wrap
        maximumLineCount: 3
    }
}

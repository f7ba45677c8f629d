import QtQuick

// A dismissible line above the page.
Rectangle {
    id: banner

    property string icon
    property string text
    property bool closable: false
    signal closed

    width: Math.min(parent.width - 2 * Theme.margin, content.implicitWidth + Theme.gap * 4 + (closable ? Theme.touch : 0))
    height: Theme.touch
    radius: height / 2
    color: Theme.surface
    border.width: 1
    border.color: Theme.raised
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Row {
        id: content
        x: Theme.gap * 2
        height: parent.height
        spacing: Theme.gap
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: banner.icon
            color: Theme.accent
        }
        Label {
            height: parent.height
            text: banner.text
            font.pixelSize: Theme.label
            width: Math.min(implicitWidth, banner.parent.width - 2 * Theme.margin - 2 * Theme.touch)
        }
    }
    TouchButton {
        objectName: "closeBanner"
        visible: banner.closable
        anchors.right: parent.right
        icon: "close"
        iconSize: Theme.icon - 8
        label: qsTr("Close")
        onClicked: banner.closed()
    }
}

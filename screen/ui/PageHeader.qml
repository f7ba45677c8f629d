import QtQuick

// Title of a page, with a way back.
Item {
    id: header

    property string title
    property bool canGoBack: false
    default property alias actions: actions.data
    signal back

    implicitHeight: Theme.touch + Theme.gap

    TouchButton {
        id: backButton
        objectName: "back"
        visible: header.canGoBack
        x: (Theme.icon - width) / 2
        anchors.verticalCenter: parent.verticalCenter
        icon: "back"
        label: qsTr("Back")
        onClicked: header.back()
    }
    Label {
        anchors.left: header.canGoBack ? backButton.right : parent.left
        anchors.leftMargin: header.canGoBack ? Theme.gap : 0
        anchors.right: actions.left
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        text: header.title
        font.pixelSize: Theme.title
        font.weight: Font.DemiBold
        Accessible.ignored: false
        Accessible.role: Accessible.Heading
    }
    Row {
        id: actions
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
    }
}

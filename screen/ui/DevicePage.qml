import QtQuick
import Ipod

// The attached devices.
Item {
    id: page

    readonly property Item first: list
    signal entered

    PageHeader {
        id: header
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: parent.right
        title: qsTr("Devices")
    }
    NameList {
        id: list
        objectName: "devices"
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin - Theme.gap * 2
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        model: DeviceModel {
            id: devices
        }
        rowIcon: "device"
        markedIcon: "device"
        marked: devices.entered
        markedName: Player.deviceName
        Accessible.name: header.title
        onOpened: row => {
            devices.enter(row);
            page.entered();
        }
    }
}

import QtQuick
import Ipod

// Name and battery of the device.
Row {
    id: row

    readonly property real percent: Math.min(100, BatteryInfo.percent)
    readonly property bool charging: BatteryInfo.status === "charging"

    spacing: Theme.gap
    Accessible.role: Accessible.StaticText
    Accessible.name: percent < 0 ? Player.deviceName : qsTr("%1, battery %2 %").arg(Player.deviceName).arg(percent)

    Label {
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, Theme.compact ? 180 : 320)
        text: Player.deviceName
        color: Theme.quiet
        font.pixelSize: Theme.label
    }
    Label {
        anchors.verticalCenter: parent.verticalCenter
        visible: row.percent >= 0
        text: row.percent + " %"
        color: row.percent < 15 && !row.charging ? Theme.accent : Theme.quiet
        font.pixelSize: Theme.label
    }
    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        visible: row.percent >= 0
        width: 40
        height: 20
        radius: 5
        color: "transparent"
        border.width: 2
        border.color: Theme.quiet
        Rectangle {
            x: 4
            y: 4
            width: (parent.width - 8) * row.percent / 100
            height: parent.height - 8
            radius: 2
            color: row.charging || row.percent < 15 ? Theme.accent : Theme.quiet
        }
    }
}

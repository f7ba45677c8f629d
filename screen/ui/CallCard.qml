import QtQuick
import Ipod

// A phone call: a card while it rings, which can be hidden, then a line for the banner.
Item {
    id: calls

    readonly property var call: phone.current
    readonly property string party: call.name !== "" ? call.name : call.remote !== "" ? call.remote : qsTr("Unknown number")
    readonly property bool ringing: call.status === "ringing"
    property string hidden // identifies the call that was hidden
    readonly property string key: call.uuid + call.remote
    readonly property bool open: phone.count > 0 && ringing && hidden !== key + call.status
    readonly property string line: phone.count > 0 && !open ? description + " · " + party : "" // for a banner
    readonly property string description: ({
            "ringing": call.direction === "outgoing" ? qsTr("Calling") : qsTr("Incoming call"),
            "sending": qsTr("Calling"),
            "connecting": qsTr("Connecting"),
            "active": qsTr("On the phone"),
            "held": qsTr("On hold"),
            "disconnecting": qsTr("Call ended")
        })[call.status] ?? qsTr("Phone call")

    CallModel {
        id: phone
    }

    Rectangle {
        objectName: "call"
        anchors.fill: parent
        visible: calls.open
        color: Theme.veil
        MouseArea {
            anchors.fill: parent
        }
        Rectangle {
            anchors.centerIn: parent
            width: Math.min(parent.width - 2 * Theme.margin, 720)
            height: content.height + 2 * Theme.margin
            radius: Theme.radius * 1.5
            color: Theme.surface
            border.width: 1
            border.color: Theme.raised
            Accessible.role: Accessible.AlertMessage
            Accessible.name: calls.description + ": " + calls.party
            Column {
                id: content
                x: Theme.margin
                y: Theme.margin
                width: parent.width - 2 * Theme.margin
                spacing: Theme.gap
                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    name: "phone"
                    color: Theme.accent
                    size: Theme.touch - 16
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: calls.description
                    color: Theme.quiet
                    font.pixelSize: Theme.label
                }
                Label {
                    objectName: "caller"
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: calls.party
                    font.pixelSize: Theme.display
                    font.weight: Font.DemiBold
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: calls.call.name === "" ? calls.call.label : [calls.call.label, calls.call.remote].filter(part => part !== "").join(" · ")
                    color: Theme.quiet
                }
                Item {
                    width: 1
                    height: Theme.gap
                }
                Label {
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: qsTr("Answer or decline on the phone")
                    color: Theme.quiet
                    font.pixelSize: Theme.label
                }
                TouchButton {
                    objectName: "hideCall"
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: Theme.touch * 2.4
                    filled: true
                    text: qsTr("Hide")
                    onClicked: calls.hidden = calls.key + calls.call.status
                    onVisibleChanged: if (visible)
                        forceActiveFocus()
                }
            }
        }
    }
}

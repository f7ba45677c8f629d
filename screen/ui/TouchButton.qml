import QtQuick

// A button with an icon, a text, or both, one above the other.
Rectangle {
    id: button

    property string icon
    property string text
    property string label: text // for screen readers
    property bool filled: false
    property bool checked: false
    property color resting: "transparent"
    property int iconSize: Theme.icon
    readonly property color ink: filled ? Theme.accentText : checked ? Theme.accent : Theme.text
    signal clicked

    function activate() {
        if (enabled)
            clicked();
    }

    implicitWidth: Theme.touch
    implicitHeight: Theme.touch
    radius: Math.min(width, height) / 2
    color: filled ? Theme.accent : area.pressed ? Theme.raised : resting
    scale: area.pressed ? 0.96 : 1
    opacity: enabled ? 1 : 0.4
    border.width: activeFocus && Theme.showFocus ? 3 : 0
    border.color: filled ? Theme.text : Theme.accent
    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: label
    Accessible.focusable: true
    Accessible.checked: checked
    Accessible.onPressAction: activate()

    Behavior on scale {
        NumberAnimation {
            duration: Theme.quick
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 2
        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: button.icon !== ""
            name: button.icon
            color: button.ink
            size: button.iconSize
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: button.text !== ""
            text: button.text
            color: button.ink
            font.pixelSize: button.icon === "" ? Theme.body : Theme.label - 1
        }
    }

    // Color alone would not be enough.
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.gap
        visible: button.checked && button.text === ""
        width: 6
        height: 6
        radius: 3
        color: button.ink
    }
    MouseArea {
        id: area
        anchors.fill: parent
        onPressed: Theme.showFocus = false
        onClicked: {
            button.forceActiveFocus(Qt.MouseFocusReason);
            button.activate();
        }
    }
}

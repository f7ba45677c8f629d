import QtQuick

// Progress that can be dragged. With the knob: press, turn (ten seconds per step), press.
Item {
    id: bar

    property real elapsed: 0
    property real length: 0
    property bool editing: false
    property real wanted: 0
    readonly property bool seekable: length > 0
    readonly property real shown: area.pressed || editing ? wanted : Math.min(elapsed, length)
    readonly property real share: seekable ? shown / length : 0
    signal seek(real position)

    function activate() {
        if (!seekable)
            return;
        if (editing)
            seek(wanted);
        wanted = elapsed;
        editing = !editing;
    }
    function turn(steps) {
        if (editing)
            wanted = Math.max(0, Math.min(length, wanted + steps * 10000));
        return editing;
    }
    function at(x) {
        return Math.max(0, Math.min(1, x / width)) * length;
    }

    implicitHeight: Theme.touch
    activeFocusOnTab: true
    onActiveFocusChanged: if (!activeFocus)
        editing = false

    Accessible.role: Accessible.Slider
    Accessible.name: qsTr("Position: %1 of %2").arg(Theme.time(shown)).arg(Theme.time(length))
    Accessible.focusable: true

    Rectangle {
        id: track
        y: (parent.height - height) / 2 - Theme.label / 2
        width: parent.width
        height: 6
        radius: 3
        color: Theme.groove
        Rectangle {
            width: parent.width * bar.share
            height: parent.height
            radius: 3
            color: Theme.accent
        }
    }
    Rectangle {
        visible: bar.seekable
        anchors.verticalCenter: track.verticalCenter
        x: track.width * bar.share - width / 2
        width: area.pressed || bar.activeFocus && Theme.showFocus ? 30 : 20
        height: width
        radius: width / 2
        color: bar.editing ? Theme.text : Theme.accent
        border.width: bar.activeFocus && Theme.showFocus ? 3 : 0
        border.color: bar.editing ? Theme.accent : Theme.text
    }
    Label {
        anchors.top: track.bottom
        anchors.topMargin: Theme.gap + 2
        text: bar.seekable ? Theme.time(bar.shown) : ""
        color: Theme.quiet
        font.pixelSize: Theme.label
    }
    Label {
        anchors.top: track.bottom
        anchors.topMargin: Theme.gap + 2
        anchors.right: parent.right
        text: bar.seekable ? Theme.time(bar.length) : ""
        color: Theme.quiet
        font.pixelSize: Theme.label
    }
    MouseArea {
        id: area
        anchors.fill: parent
        enabled: bar.seekable
        preventStealing: true
        onPressed: mouse => {
            Theme.showFocus = false;
            bar.wanted = bar.at(mouse.x);
        }
        onPositionChanged: mouse => bar.wanted = bar.at(mouse.x)
        onReleased: bar.seek(bar.wanted)
    }
}

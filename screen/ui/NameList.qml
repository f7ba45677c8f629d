import QtQuick

// A list of names of any length. The knob moves along its rows and leaves it at either end.
ListView {
    id: list

    property string rowIcon
    property string trailingIcon
    property int marked: -1 // the row that plays, or is selected; if unknown, rows named markedName
    property string markedName
    property string markedIcon: "playing"
    signal opened(int row)

    function activate() {
        if (currentIndex >= 0 && currentIndex < count)
            opened(currentIndex);
    }
    function turn(steps) {
        const row = currentIndex + steps;
        if (row < 0 || row >= count)
            return false;
        currentIndex = row;
        return true;
    }
    function show(row) {
        currentIndex = Math.max(0, Math.min(row, count - 1));
        positionViewAtIndex(row, ListView.Beginning);
    }

    clip: true
    reuseItems: true
    cacheBuffer: 0
    boundsBehavior: Flickable.StopAtBounds
    flickDeceleration: 2500
    maximumFlickVelocity: 9000
    highlightMoveDuration: 0
    highlightResizeDuration: 0
    keyNavigationEnabled: true
    activeFocusOnTab: true
    Accessible.role: Accessible.List

    delegate: Rectangle {
        id: row

        required property int index
        required property string name
        required property bool loaded
        readonly property bool current: ListView.isCurrentItem && list.activeFocus && Theme.showFocus
        readonly property bool marked: list.marked >= 0 ? index === list.marked : name !== "" && name === list.markedName

        width: list.width
        height: Theme.touch
        radius: Theme.radius
        color: area.pressed ? Theme.raised : current ? Theme.surface : "transparent"
        border.width: current ? 3 : 0
        border.color: Theme.accent
        // Unused items are kept for other rows. They are not drawn, but screen readers would find them.
        ListView.onPooled: visible = false
        ListView.onReused: visible = true
        Accessible.role: Accessible.ListItem
        Accessible.name: name
        Accessible.onPressAction: list.opened(index)

        Icon {
            id: icon
            anchors.verticalCenter: parent.verticalCenter
            x: Theme.gap * 2
            name: row.marked ? list.markedIcon : list.rowIcon
            color: row.marked ? Theme.accent : Theme.quiet
            size: Theme.icon - 6
        }
        // Placeholder until the name arrives.
        Rectangle {
            visible: !row.loaded
            anchors.verticalCenter: parent.verticalCenter
            x: label.x
            width: label.width * (0.3 + row.index * 7 % 30 / 100)
            height: Theme.label
            radius: height / 2
            color: Theme.raised
        }
        Label {
            id: label
            anchors.left: icon.right
            anchors.leftMargin: Theme.gap * 2
            anchors.right: trailing.left
            anchors.rightMargin: Theme.gap * 2
            height: parent.height
            text: row.name
            color: row.marked ? Theme.accent : Theme.text
        }
        Icon {
            id: trailing
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: Theme.gap * 2
            name: list.trailingIcon
            color: Theme.quiet
            size: Theme.icon - 8
        }
        MouseArea {
            id: area
            anchors.fill: parent
            onPressed: Theme.showFocus = false
            onClicked: {
                list.currentIndex = row.index;
                list.forceActiveFocus(Qt.MouseFocusReason);
                list.opened(row.index);
            }
        }
    }

    // Scroll indicator.
    Rectangle {
        anchors.right: parent.right
        y: list.visibleArea.yPosition * list.height
        width: 5
        height: Math.max(24, list.visibleArea.heightRatio * list.height)
        radius: 2
        visible: list.moving && list.visibleArea.heightRatio < 1
        color: Theme.quiet
    }
}

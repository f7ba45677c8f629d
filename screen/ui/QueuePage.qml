import QtQuick
import Ipod

// What plays, and what comes next.
Item {
    id: page

    readonly property Item first: list

    function showPlaying() {
        if (Player.trackIndex >= 0 && Player.trackIndex < queue.count)
            list.show(Player.trackIndex);
    }

    onVisibleChanged: if (visible)
        showPlaying()

    QueueModel {
        id: queue
        onCountChanged: page.showPlaying()
    }
    PageHeader {
        id: header
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: parent.right
        title: qsTr("Playing next")
    }
    NameList {
        id: list
        objectName: "queue"
        anchors.top: header.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin - Theme.gap * 2
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        model: queue
        rowIcon: "note"
        marked: Player.trackIndex
        Accessible.name: header.title
        onOpened: row => queue.play(row)
    }
    Notice {
        visible: queue.counted && queue.count === 0
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        icon: "queue"
        title: qsTr("Nothing is queued")
        text: qsTr("Choose a song under Music.")
    }
}

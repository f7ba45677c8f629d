import QtQuick
import Ipod

// The playing list.
Item {
    id: page

    readonly property Item first: list
    readonly property int playing: Player.trackIndex
    readonly property int rows: queue.count // changes only with the number of rows, unlike the model's countChanged()

    function showPlaying() {
        if (playing >= 0 && playing < queue.count)
            list.show(playing);
    }

    onVisibleChanged: if (visible)
        showPlaying()
    onRowsChanged: Qt.callLater(showPlaying) // once the view has the rows
    onPlayingChanged: if (!list.activeFocus)
        showPlaying()

    QueueModel {
        id: queue
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
        marked: page.playing
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

import QtQuick
import Ipod

// The playing track: artwork, titles, position, and playback controls.
Item {
    id: page

    readonly property var track: Player.track
    readonly property var repeats: ["off", "all", "one"]
    readonly property Item first: play

    Artwork {
        id: artwork
        x: Theme.margin
        y: Theme.compact ? Theme.margin : (parent.height - height) / 2
        width: Theme.compact ? Math.min(236, parent.height - 220) : Math.min(parent.height - 2 * Theme.margin - 60, parent.width * 0.46)
        height: width
        address: Player.artwork
    }

    Column {
        id: titles
        anchors.left: artwork.right
        anchors.leftMargin: Theme.margin
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        y: Theme.compact ? artwork.y + (artwork.height - height) / 2 : artwork.y + artwork.height * 0.34 - height / 2
        spacing: Theme.gap
        Label {
            objectName: "title"
            width: parent.width
            text: page.track.title === "" ? qsTr("Nothing is playing") : page.track.title
            font.pixelSize: Theme.display
            font.weight: Font.DemiBold
            wrapMode: Text.Wrap
            maximumLineCount: 2
            Accessible.ignored: false
        }
        Label {
            objectName: "artist"
            width: parent.width
            text: page.track.artist
            visible: text !== ""
            font.pixelSize: Theme.body
            Accessible.ignored: false
        }
        Label {
            width: parent.width
            text: page.track.album
            visible: text !== ""
            color: Theme.quiet
            font.pixelSize: Theme.body
            Accessible.ignored: false
        }
    }

    SeekBar {
        id: seekBar
        objectName: "seekBar"
        anchors.left: Theme.compact ? artwork.left : artwork.right
        anchors.leftMargin: Theme.compact ? 0 : Theme.margin
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.bottom: controls.top
        anchors.bottomMargin: Theme.gap
        elapsed: Player.elapsed
        length: Player.position.length > 0 ? Player.position.length : page.track.length
        onSeek: position => Player.seek(position)
    }

    Row {
        id: controls
        anchors.horizontalCenter: seekBar.horizontalCenter
        y: Theme.compact ? parent.height - height - 2 * Theme.gap : artwork.y + artwork.height - height
        spacing: Theme.compact ? 44 : Math.max(0, (seekBar.width - 4 * Theme.touch - play.width) / 4)
        TouchButton {
            objectName: "shuffle"
            anchors.verticalCenter: parent.verticalCenter
            icon: "shuffle"
            checked: Player.shuffle !== "off" && Player.shuffle !== ""
            label: qsTr("Shuffle: %1").arg(Player.shuffle)
            onClicked: Player.setShuffle(checked ? "off" : "songs")
        }
        TouchButton {
            objectName: "previous"
            anchors.verticalCenter: parent.verticalCenter
            icon: "previous"
            label: qsTr("Previous track")
            onClicked: Player.previous()
        }
        TouchButton {
            id: play
            objectName: "play"
            width: Theme.touch + (Theme.compact ? 8 : 24)
            height: width
            filled: true
            iconSize: Theme.icon + 10
            icon: Player.status === "playing" ? "pause" : "play"
            label: Player.status === "playing" ? qsTr("Pause") : qsTr("Play")
            onClicked: Player.toggle()
        }
        TouchButton {
            objectName: "next"
            anchors.verticalCenter: parent.verticalCenter
            icon: "next"
            label: qsTr("Next track")
            onClicked: Player.next()
        }
        TouchButton {
            objectName: "repeat"
            anchors.verticalCenter: parent.verticalCenter
            icon: Player.repeat === "one" ? "repeat-one" : "repeat"
            checked: Player.repeat === "one" || Player.repeat === "all"
            label: qsTr("Repeat: %1").arg(Player.repeat)
            onClicked: Player.setRepeat(page.repeats[(page.repeats.indexOf(Player.repeat) + 1) % 3])
        }
    }
}

import QtQuick

// The artwork of the playing track; a musical note if it has none, or it cannot be decoded.
Rectangle {
    id: frame

    property string address

    color: Theme.surface
    radius: Theme.radius
    Accessible.role: Accessible.Graphic
    Accessible.name: qsTr("Artwork")

    Icon {
        anchors.centerIn: parent
        name: "note"
        color: Theme.quiet
        size: frame.width / 3
    }
    Image {
        objectName: "artwork"
        anchors.fill: parent
        source: frame.address === "" ? "" : frame.address + "/rounded/" + frame.radius
        sourceSize: Qt.size(width, height)
        fillMode: Image.PreserveAspectFit
        asynchronous: true
        cache: false
    }
}

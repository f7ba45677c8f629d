import QtQuick

Image {
    property string name
    property color color: Theme.text
    property int size: Theme.icon

    width: size
    height: size
    sourceSize: Qt.size(size, size)
    source: name === "" ? "" : "image://icon/" + name + "/" + String(color).slice(-6)
    Accessible.ignored: true
}

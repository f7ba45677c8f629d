import QtQuick

// Letters to search with: initials and pinyin are enough for names in any script.
Rectangle {
    id: keys

    signal typed(string letter)
    signal erased

    implicitHeight: grid.height + 2 * Theme.gap
    color: Theme.surface

    Grid {
        id: grid
        anchors.horizontalCenter: parent.horizontalCenter
        y: Theme.gap
        columns: 9
        spacing: 2
        Repeater {
            model: 27
            TouchButton {
                required property int index
                readonly property string letter: index < 26 ? String.fromCharCode(65 + index) : ""
                width: Math.floor((keys.width - 8 * grid.spacing) / 9)
                height: Theme.compact ? 76 : 80
                radius: Theme.radius
                resting: Theme.raised
                objectName: "key" + letter
                text: letter
                icon: letter === "" ? "erase" : ""
                label: letter === "" ? qsTr("Erase") : letter
                onClicked: letter === "" ? keys.erased() : keys.typed(letter.toLowerCase())
            }
        }
    }
}

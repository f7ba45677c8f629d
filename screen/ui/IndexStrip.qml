import QtQuick

// The letters of a list. Touching or dragging jumps to the first name of a letter.
Item {
    id: strip

    property var sections: []
    readonly property int step: Math.max(1, Math.ceil(sections.length * (Theme.label + 4) / Math.max(1, height)))
    readonly property int touched: area.pressed ? at(area.mouseY) : -1
    signal jumped(int row)

    function at(y) {
        return Math.max(0, Math.min(sections.length - 1, Math.floor(y / height * sections.length)));
    }

    width: Theme.touch
    visible: sections.length > 1
    Accessible.role: Accessible.ScrollBar
    Accessible.name: qsTr("Letters")

    Repeater {
        model: strip.sections
        Label {
            required property int index
            required property var modelData
            visible: index % strip.step === 0
            y: (index + 0.5) * strip.height / strip.sections.length - height / 2
            width: strip.width
            horizontalAlignment: Text.AlignHCenter
            text: modelData.label
            color: index === strip.touched ? Theme.accent : Theme.quiet
            font.pixelSize: Theme.label
            font.weight: Font.DemiBold
        }
    }
    Rectangle {
        visible: strip.touched >= 0
        anchors.right: strip.left
        anchors.rightMargin: Theme.margin
        y: Math.max(0, Math.min(strip.height - height, area.mouseY - height / 2))
        width: Theme.touch * 1.4
        height: width
        radius: width / 2
        color: Theme.accent
        Label {
            anchors.centerIn: parent
            text: strip.touched >= 0 ? strip.sections[strip.touched].label : ""
            color: Theme.accentText
            font.pixelSize: Theme.display
            font.weight: Font.DemiBold
        }
    }
    MouseArea {
        id: area
        anchors.fill: parent
        preventStealing: true
        onPressed: strip.jumped(strip.sections[strip.at(mouseY)].row)
        onPositionChanged: strip.jumped(strip.sections[strip.at(mouseY)].row)
    }
}

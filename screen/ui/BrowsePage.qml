import QtQuick
import Ipod

// The music of the device: levels, letters, and search.
Item {
    id: page

    property bool searching: false
    readonly property Item first: list
    signal played

    function goBack() {
        if (searching)
            endSearch();
        else if (music.path.length > 0)
            music.back();
        else
            return false;
        return true;
    }
    function type(text) {
        searching = true;
        music.query += text;
    }
    function erase() {
        music.query = music.query.slice(0, -1);
    }
    function endSearch() {
        searching = false;
        music.query = "";
    }

    BrowseModel {
        id: music
        onQueryChanged: list.show(0)
        onLevelChanged: row => {
            page.searching = false;
            list.show(row);
        }
    }

    PageHeader {
        id: header
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap
        canGoBack: page.searching || music.path.length > 0
        title: page.searching ? (music.query === "" ? qsTr("Search") : music.query.toUpperCase() + "│") : music.path.length > 0 ? music.path[music.path.length - 1] : qsTr("Music")
        onBack: page.goBack()
        TouchButton {
            objectName: "search"
            visible: music.count > 0 && !page.searching
            icon: "search"
            label: qsTr("Search")
            onClicked: page.searching = true
        }
    }
    NameList {
        id: list
        objectName: "names"
        anchors.top: header.bottom
        anchors.bottom: keys.visible ? keys.top : parent.bottom
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin - Theme.gap * 2
        anchors.right: strip.visible ? strip.left : parent.right
        anchors.rightMargin: strip.visible ? 0 : Theme.margin
        model: music
        rowIcon: music.folders ? "library" : "note"
        trailingIcon: music.folders ? "forward" : ""
        Accessible.name: header.title
        onOpened: row => {
            const plays = !music.folders;
            music.open(row);
            if (plays)
                page.played();
        }
    }
    IndexStrip {
        id: strip
        objectName: "letters"
        anchors.top: list.top
        anchors.topMargin: Theme.gap
        anchors.bottom: list.bottom
        anchors.bottomMargin: Theme.gap * 2
        anchors.right: parent.right
        visible: !page.searching && music.count > 12 && sections.length > 1
        sections: music.sections
        onJumped: row => list.show(row)
    }
    Notice {
        objectName: "empty"
        visible: music.counted && music.count === 0 && !page.searching
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        icon: "note"
        title: qsTr("No music here")
        text: qsTr("The device has no music in this list.")
    }
    Label {
        visible: page.searching && music.query !== "" && music.count === 0
        anchors.horizontalCenter: list.horizontalCenter
        y: list.y + Theme.margin
        text: music.sections.length === 0 ? qsTr("Reading names…") : qsTr("No name matches")
        color: Theme.quiet
    }
    LetterKeys {
        id: keys
        objectName: "keys"
        visible: page.searching
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        onTyped: letter => page.type(letter)
        onErased: page.erase()
    }
}

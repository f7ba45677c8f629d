import QtQuick
import Ipod

// The screen: a rail of buttons for the pages, the current page, and banners above it.
FocusScope {
    id: root

    property string page: "nowplaying"
    property bool night: true
    property bool animated: true
    property var knob: [Qt.Key_Left, Qt.Key_Right, Qt.Key_Return] // left, right, press
    property string closedOffer
    property string failure // of the last request, for some seconds
    readonly property QtObject theme: Theme // for tests
    readonly property bool ready: Session.phase === "ready"
    readonly property bool present: ready && !(Player.deviceCount === 0 || Player.device === "not-detected" && Player.deviceCount < 1)
    readonly property var pages: ({
            "nowplaying": nowPlaying,
            "browse": browse,
            "queue": queue,
            "devices": devices
        })
    readonly property string offer: Player.carplay.status === "detected" ? qsTr("CarPlay is available") : Player.wireless.available ? qsTr("Wireless CarPlay is available") : Player.carlife === "detected" ? qsTr("CarLife is available") : ""
    readonly property var problem: ({
            "absent": [qsTr("Waiting for the iPod service"), Session.error.kind === "" ? qsTr("It has not started yet.") : Session.error.reason + (Session.error.remedy === "" ? "" : ": " + Session.error.remedy)],
            "connecting": [qsTr("Connecting"), qsTr("Reading the state of the device.")],
            "lost": [qsTr("The iPod service stopped"), qsTr("The music returns when it restarts.")],
            "ready": [qsTr("No device"), qsTr("Attach an iPod or iPhone.")]
        })[Session.phase] ?? ["", ""]

    function show(name) {
        page = name;
        Qt.callLater(focusPage); // once it is visible
    }
    function focusPage() {
        if (pages[page].visible)
            pages[page].first.forceActiveFocus();
    }
    // The item that has the focus, or the list whose row has it.
    function focused() {
        let item = Window.activeFocusItem;
        while (item && typeof item.activate !== "function")
            item = item.parent;
        return item;
    }
    function turn(steps) {
        const item = focused();
        if (item && typeof item.turn === "function" && item.turn(steps))
            return;
        const next = (item ?? root).nextItemInFocusChain(steps > 0);
        if (next)
            next.forceActiveFocus(steps > 0 ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }
    function press() {
        focused()?.activate();
    }
    function goBack() {
        if (page !== "browse" || !browse.goBack())
            show("nowplaying");
    }
    function key(event) {
        switch (event.key) {
        case knob[0]:
            return turn(-1);
        case knob[1]:
            return turn(1);
        case knob[2]:
        case Qt.Key_Enter:
            return press();
        case Qt.Key_Space:
        case Qt.Key_MediaPlay:
        case Qt.Key_MediaTogglePlayPause:
            return Player.toggle();
        case Qt.Key_MediaNext:
            return Player.next();
        case Qt.Key_MediaPrevious:
            return Player.previous();
        case Qt.Key_Escape:
        case Qt.Key_Back:
            return goBack();
        case Qt.Key_Backspace:
            return page === "browse" && browse.searching ? browse.erase() : goBack();
        }
        if (page === "browse" && /^[^\x00-\x20\x7f]$/u.test(event.text))
            return browse.type(event.text);
        event.accepted = false;
    }

    focus: true
    Keys.onPressed: event => {
        event.accepted = true;
        Theme.showFocus = true;
        key(event);
    }
    Component.onCompleted: show(page)
    onPresentChanged: show(page)

    Binding {
        target: Theme
        property: "night"
        value: root.night
    }
    Binding {
        target: Theme
        property: "compact"
        value: root.height < 600
    }
    Binding {
        target: Theme
        property: "animated"
        value: root.animated
    }
    Connections {
        target: Session
        function onFailed(request, reason, remedy) {
            root.failure = qsTr("The request failed (%1)").arg(request) + (remedy === "" ? "" : ": " + remedy);
            forgetFailure.restart();
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Image {
        anchors.fill: parent
        visible: root.present && root.page === "nowplaying"
        source: visible && Player.artwork !== "" && root.width > 0 ? Player.artwork + "/backdrop/" + String(Theme.background).slice(-6) : ""
        sourceSize: Qt.size(root.width, root.height)
        asynchronous: true
        cache: false
        Accessible.ignored: true
    }

    Item {
        anchors.left: rail.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom

        Item {
            width: parent.width
            height: banner.visible ? banner.y : parent.height
            NowPlaying {
                id: nowPlaying
                anchors.fill: parent
                visible: root.present && root.page === "nowplaying"
            }
            BrowsePage {
                id: browse
                anchors.fill: parent
                visible: root.present && root.page === "browse"
                onPlayed: root.show("nowplaying")
            }
            QueuePage {
                id: queue
                anchors.fill: parent
                visible: root.present && root.page === "queue"
            }
            DevicePage {
                id: devices
                anchors.fill: parent
                visible: root.present && root.page === "devices"
                onEntered: root.show("browse")
            }
        }
        Notice {
            objectName: "problem"
            visible: !root.present
            anchors.centerIn: parent
            width: parent.width - 2 * Theme.margin
            icon: root.ready ? "device" : "unplugged"
            title: root.problem[0]
            text: root.problem[1]
        }
        Battery {
            visible: root.present && root.page !== "browse"
            anchors.right: parent.right
            anchors.rightMargin: Theme.margin
            y: (Theme.touch + Theme.gap - height) / 2
        }
        Banner {
            id: banner
            objectName: "banner"
            visible: text !== ""
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.gap
            icon: root.failure !== "" ? "alert" : calls.line !== "" ? "phone" : "car"
            text: root.failure !== "" ? root.failure : calls.line !== "" ? calls.line : root.present && root.offer !== root.closedOffer ? root.offer : ""
            closable: root.failure === "" && calls.line === ""
            onClosed: root.closedOffer = root.offer
        }
    }
    Timer {
        id: forgetFailure
        interval: 5000
        onTriggered: root.failure = ""
    }

    Rectangle {
        id: rail
        width: Theme.rail
        height: parent.height
        color: Theme.surface
        Column {
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.gap
            spacing: Theme.compact ? 0 : Theme.gap
            Repeater {
                model: [["nowplaying", "now", qsTr("Playing")], ["browse", "library", qsTr("Music")], ["queue", "queue", qsTr("Next")], ["devices", "device", qsTr("Devices")]]
                TouchButton {
                    required property var modelData
                    objectName: "page-" + modelData[0]
                    radius: Theme.radius
                    icon: modelData[1]
                    text: modelData[2]
                    checked: root.page === modelData[0]
                    resting: checked ? Theme.raised : "transparent"
                    onClicked: root.show(modelData[0])
                }
            }
        }
        TouchButton {
            objectName: "theme"
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.gap
            radius: Theme.radius
            icon: root.night ? "sun" : "moon"
            label: root.night ? qsTr("Day colors") : qsTr("Night colors")
            onClicked: root.night = !root.night
        }
    }
    CallCard {
        id: calls
        anchors.fill: parent
    }
}

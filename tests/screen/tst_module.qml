import QtQuick
import QtTest
import Ipod

TestCase {
    id: test
    name: "Ipod"

    property string request

    Component {
        id: database
        BrowseModel {}
    }
    CallModel {
        id: calls
    }
    SignalSpy {
        id: resets
        signalName: "modelReset"
    }
    SignalSpy {
        id: removals
        signalName: "rowsRemoved"
    }
    SignalSpy {
        id: changes
        signalName: "dataChanged"
    }
    Connections {
        target: Session
        function onFailed(request) {
            test.request = request;
        }
    }

    function init() {
        fake.clear();
    }

    function test_unknown_properties_keep_their_type() {
        tryCompare(Session, "phase", "ready");
        tryVerify(() => Player.track.title === "");
        compare(Player.queueSize, -1);
        compare(Player.sourceValid, false);
        compare(Player.status, "");
        compare(Player.why.track, "not reported yet");
    }
    function test_rows_are_properties() {
        fake.play("Low Water");
        tryVerify(() => Player.track.title === "Low Water");
        compare(Player.track.artist, "Harbour Quartet");
        compare(Player.status, "playing");
        compare(Player.position.length, 180000);
        compare(Player.elapsed, 42000);
        compare(Player.queueSize, 3);
        verify(Player.why.track === undefined);
    }
    function test_properties_are_read_only() {
        fake.play("Low Water");
        tryVerify(() => Player.queueSize === 3);
        Player.queueSize = 7;
        compare(Player.queueSize, 3);
    }
    function test_commands_are_sent() {
        Player.next();
        tryVerify(() => fake.lastCall() === "Next()");
        Player.setShuffle("no such mode");
        compare(fake.lastCall(), "Next()");
    }
    function test_failed_commands_are_reported() {
        fake.refuse("Previous");
        Player.previous();
        tryCompare(test, "request", "previous");
    }
    function test_battery() {
        fake.drain(42);
        tryVerify(() => BatteryInfo.percent === 42);
        compare(BatteryInfo.status, "");
    }
    function test_calls_have_a_role_for_each_row() {
        fake.ring("Li Lei");
        tryCompare(calls, "count", 1);
        compare(calls.current.name, "Li Lei");
        compare(calls.current.status, "ringing");
        compare(calls.current.conferenceGroup, -1);
    }
    function test_pages_arrive_through_data_changes() {
        fake.fill(1000);
        const music = createTemporaryObject(database, test);
        tryCompare(music, "count", 1000);
        resets.target = music;
        changes.target = music;
        const name = Qt.UserRole;
        tryVerify(() => music.data(music.index(500, 0), name) === "Song 500");
        verify(changes.count > 0);
        tryVerify(() => music.sections.length > 0);
        compare(resets.count, 0);
    }
    function test_a_search_changes_the_rows_once_per_letter() {
        fake.fill(1000);
        const music = createTemporaryObject(database, test);
        tryVerify(() => music.sections.length > 0);
        resets.target = music;
        removals.target = music;
        const rows = [];
        music.countChanged.connect(() => rows.push(music.count));
        music.query = "song 9";
        music.query = "song 99";
        compare(music.data(music.index(0, 0), Qt.UserRole), "Song 99");
        music.query = "";
        compare(rows, [111, 11, 1000]);
        compare(removals.count, 2);
        compare(resets.count, 0);
        compare(music.data(music.index(0, 0), Qt.UserRole), "Song 0");
    }
}

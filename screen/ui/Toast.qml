import QtQuick

// A message that disappears by itself.
Banner {
    id: toast

    function show(message) {
        text = message;
        timer.restart();
    }

    visible: timer.running
    icon: "unplugged"
    Timer {
        id: timer
        interval: 5000
    }
}

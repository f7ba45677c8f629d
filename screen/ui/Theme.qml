pragma Singleton
import QtQuick

// All colors, sizes, and times.
QtObject {
    property bool night: true
    property bool compact: false // windows below 600 pixels of height
    property bool animated: true
    property bool showFocus: false // after a key was pressed, until the screen is touched

    // Each text color has a contrast of at least 4.5 on each surface.
    readonly property color background: night ? "#0c0f14" : "#f3f1ec"
    readonly property color surface: night ? "#171c24" : "#ffffff"
    readonly property color raised: night ? "#252c38" : "#e4e0d8"
    readonly property color groove: night ? "#59aeb7c4" : "#594f5865"
    readonly property color text: night ? "#f3f4f6" : "#16191e"
    readonly property color quiet: night ? "#aeb7c4" : "#4f5865"
    readonly property color accent: night ? "#f2b36d" : "#97450c"
    readonly property color accentText: night ? "#1d1206" : "#ffffff"
    readonly property color veil: night ? "#d9090b0f" : "#d9e9e6df"

    readonly property int touch: compact ? 76 : 88
    readonly property int gap: compact ? 8 : 12
    readonly property int margin: compact ? 24 : 48
    readonly property int radius: compact ? 12 : 18
    readonly property int rail: compact ? 80 : 104
    readonly property int icon: compact ? 30 : 36

    readonly property int display: compact ? 30 : 46
    readonly property int title: compact ? 24 : 32
    readonly property int body: compact ? 20 : 26
    readonly property int label: compact ? 16 : 20

    readonly property int quick: animated ? 120 : 0

    // "3:07", or "1:02:45".
    function time(milliseconds) {
        const seconds = Math.max(0, Math.floor(milliseconds / 1000));
        const two = n => String(n).padStart(2, "0");
        const hours = Math.floor(seconds / 3600);
        const minutes = Math.floor(seconds / 60) % 60;
        return (hours > 0 ? hours + ":" + two(minutes) : minutes) + ":" + two(seconds % 60);
    }
}

/// @file
/// The audio-source manager of the head unit, which decides which of the competing sources is active.
///
/// A source is a plain number; 10 and 11 are the two iPod sources. The head unit's manager defines further codes,
/// reasons, and confirmation values.
#pragma once

/// The manager. All operations are static.
class QBXSource
{
public:
    /// How other sources behave while this one is active.
    enum AudioGainType : int
    {
        AUDIO_GAIN = 0,            ///< they stop
        AUDIO_GAIN_TRANSIENT = 1,  ///< they pause
        AUDIO_GAIN_DUCK = 2,       ///< they become quieter
    };

    /// Requests a source. Returns 1 or 2 if the request is granted, any other code if it is refused.
    static int Request(int source, AudioGainType gain);

    /// Returns whether the source is active. The stand-in returns true for the source that it granted last, until its
    /// release, and false before any request.
    static bool IsActived(int source);

    /// Releases a source. @p reason is defined by the manager; the library passes 1 when the device's source became
    /// invalid.
    static void Release(int source, int reason);

    /// Confirms to the manager that it activated a source. @p confirm is the value that came with the activation.
    static void ActiveSourceConfirm(int source, int confirm);

    /// Confirms to the manager that it deactivated a source. @p confirm is the value that came with the deactivation.
    static void DeactiveSourceConfirm(int source, int confirm);
};

/// @file
/// The audio-source manager of the head unit: it decides which of the competing sources may sound.
///
/// A source is a plain number; 10 and 11 are the two iPod sources. Codes, reasons and confirmation values beyond those
/// named here belong to the manager of the head unit.
#pragma once

/// The manager: its operations need no object.
class QBXSource
{
public:
    /// How the other sources behave while this one sounds.
    enum AudioGainType : int
    {
        AUDIO_GAIN = 0,            ///< they stop
        AUDIO_GAIN_TRANSIENT = 1,  ///< they pause
        AUDIO_GAIN_DUCK = 2,       ///< they become quieter
    };

    /// Requests a source. Returns 1 or 2 when it is granted, any other code when it is refused.
    static int Request(int source, AudioGainType gain);

    /// Returns whether the source may sound now. The stand-in returns true for the source that it granted last, until
    /// that is released, and false before any request.
    static bool IsActived(int source);

    /// Gives a source back. @p reason is the manager's; the library passes 1 when the device's source became invalid.
    static void Release(int source, int reason);

    /// Confirms to the manager that it activated a source. @p confirm is the value that came with the activation.
    static void ActiveSourceConfirm(int source, int confirm);

    /// Confirms to the manager that it deactivated a source. @p confirm is the value that came with the deactivation.
    static void DeactiveSourceConfirm(int source, int confirm);
};

/// @file
/// The audio-source manager of the head unit: it decides which of the competing sources may sound.
///
/// A source is a plain number; 10 and 11 are the two iPod sources.
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

    /// Asks for a source. 1 and 2 mean granted, everything else refused.
    static int Request(int source, AudioGainType gain);

    /// Whether the source may sound now.
    static bool IsActived(int source);

    /// Gives a source back.
    static void Release(int source, int reason);

    /// Tells the manager that its activation of a source was seen.
    static void ActiveSourceConfirm(int source, int confirm);

    /// Tells the manager that its deactivation of a source was seen.
    static void DeactiveSourceConfirm(int source, int confirm);
};

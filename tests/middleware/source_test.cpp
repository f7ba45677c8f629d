#include <QBXSource.h>
#include <QBXSourceControl.h>
#include <gtest/gtest.h>

namespace
{
constexpr int kIpod = 10;
constexpr int kOther = 3;
}  // namespace

TEST(QbxSource, GrantsARequestAndActivatesTheSource)
{
    EXPECT_EQ(1, QBXSource::Request(kIpod, QBXSource::AUDIO_GAIN));

    EXPECT_TRUE(QBXSource::IsActived(kIpod));
    EXPECT_FALSE(QBXSource::IsActived(kOther));
}

TEST(QbxSource, ActivatesTheSourceRequestedLast)
{
    QBXSource::Request(kIpod, QBXSource::AUDIO_GAIN);

    QBXSource::Request(kOther, QBXSource::AUDIO_GAIN_TRANSIENT);

    EXPECT_FALSE(QBXSource::IsActived(kIpod));
    EXPECT_TRUE(QBXSource::IsActived(kOther));
}

TEST(QbxSource, HasNoActiveSourceAfterARelease)
{
    QBXSource::Request(kIpod, QBXSource::AUDIO_GAIN);

    QBXSource::Release(kOther, 0);
    EXPECT_TRUE(QBXSource::IsActived(kIpod));
    QBXSource::Release(kIpod, 0);

    EXPECT_FALSE(QBXSource::IsActived(kIpod));
}

TEST(QbxSource, RefusesWithTheConfiguredCode)
{
    QBXSourceRefuse(-3);

    EXPECT_EQ(-3, QBXSource::Request(kIpod, QBXSource::AUDIO_GAIN));
    EXPECT_FALSE(QBXSource::IsActived(kIpod));

    QBXSourceRefuse(0);
    EXPECT_EQ(1, QBXSource::Request(kIpod, QBXSource::AUDIO_GAIN));
}

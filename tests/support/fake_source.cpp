#include "support/fake_source.h"

#include <QBXSource.h>

namespace test
{
namespace
{
void Record(const char* operation, int source)
{
    Sources().calls.push_back(std::string(operation) + "(" + std::to_string(source) + ")");
}

void Record(const char* operation, int source, int argument)
{
    Sources().calls.push_back(std::string(operation) + "(" + std::to_string(source) + ", " + std::to_string(argument) +
                              ")");
}
}  // namespace

FakeSource& Sources()
{
    static FakeSource sources;
    return sources;
}
}  // namespace test

int QBXSource::Request(int source, AudioGainType gain)
{
    test::Record("Request", source, gain);
    return test::Sources().requestResult;
}

bool QBXSource::IsActived(int source)
{
    test::Record("IsActived", source);
    return test::Sources().active.count(source) > 0;
}

void QBXSource::Release(int source, int reason)
{
    test::Record("Release", source, reason);
    if (test::Sources().released) test::Sources().released();
}

void QBXSource::ActiveSourceConfirm(int source, int confirm)
{
    test::Record("ActiveSourceConfirm", source, confirm);
}

void QBXSource::DeactiveSourceConfirm(int source, int confirm)
{
    test::Record("DeactiveSourceConfirm", source, confirm);
}

// Links ipodkit and the C++ library, and does nothing: the difference from link_gio is the cost of loading it.
#include <ipodkit/session.h>

#include <exception>

int main()
{
    const auto volatile linked = &ipodkit::Session::Open;
    const auto volatile language = &std::terminate;
    return linked == nullptr || language == nullptr;
}

#include "internal/call.h"

namespace qbx
{
void LogFailure(const LogSite& where, const char* format, const GError* error)
{
    if (error != nullptr) LOG_AT(where, kError, format, error->message);
}
}  // namespace qbx

#include "trovio/messages/ExceptionText.h"

#include "trovio/Exception.h"
#include <exception>

namespace Trovio {

std::string describeCurrentException()
{
    try {
        throw;
    } catch (const Exception& problem) {
        return problem.getMessage();
    } catch (const std::exception& problem) {
        return problem.what();
    } catch (...) {
        return "something that is no exception";
    }
}

} // namespace Trovio

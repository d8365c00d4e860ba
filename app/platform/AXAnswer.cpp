#include "platform/AXAnswer.hpp"

namespace lectorbell {

int errorCode(AXFailure failure) {
    switch (failure) {
    case AXFailure::absent:
        return -25212; // no value
    case AXFailure::timedOut:
        return -25204; // cannot complete
    }
    return -25200;
}

} // namespace lectorbell

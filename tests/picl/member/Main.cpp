#include "platform/OXPLStreamDriverInterface.h"
#include "platform/SimpleEvent.h"
#include "platform/os/DeviceRoot.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"

/// A member in a process of its own, on the device root that is its argument. It has one number: a value that
/// is set to 41 becomes 42, and 0 ends the program.
int main(int argc, char* argv[]) {
    if (argc != 2)
        return 2;
    os::setDeviceRoot(argv[1]);
    auto stream = std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream);
    if (!stream->isOpen())
        return 1;
    Member member("CHILD", stream);
    const auto number = member.add<UInt32Property>("N", 1U);
    SimpleEvent end(true);
    number->addListener([&](const std::shared_ptr<Property>&) {
        if (number->getValue() == 41)
            number->setValue(42);
        if (number->getValue() == 0)
            end.signal();
    });
    member.join();
    end.wait();
    member.leave();
    return 0;
}

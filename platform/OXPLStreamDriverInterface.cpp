#include "platform/OXPLStreamDriverInterface.h"

#include "platform/WideText.h"
#include "platform/os/DeviceRoot.h"

namespace {

std::int32_t streamResult(const os::Transfer& transfer) {
    return transfer.failure ? StreamFailed : static_cast<std::int32_t>(transfer.count);
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the path is the stream's to take
OXPLStreamDriverInterface::OXPLStreamDriverInterface(std::wstring path, std::uint32_t kind)
    : Stream(kind), m_handle(os::openDevice(os::devicePath(toNarrow(path)))) {}

OXPLStreamDriverInterface::~OXPLStreamDriverInterface() { OXPLStreamDriverInterface::close(); }

bool OXPLStreamDriverInterface::isOpen() const { return m_handle.isOpen(); }

std::int32_t OXPLStreamDriverInterface::read(void* buffer, std::int32_t size) {
    return streamResult(m_handle.read(buffer, static_cast<std::size_t>(size)));
}

std::int32_t OXPLStreamDriverInterface::write(const void* buffer, std::int32_t size) {
    return streamResult(m_handle.write(buffer, static_cast<std::size_t>(size)));
}

void OXPLStreamDriverInterface::close() { m_handle.close(); }

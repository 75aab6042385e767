#pragma once

/// What Qt's platform plug-in and the font library keep to the end of a process, as suppressions for the
/// address sanitizer.
inline constexpr const char* kPlatformLeaks = "leak:libqoffscreen\n"
                                              "leak:libfontconfig\n"
                                              "leak:QWindowSystemInterface::handleScreenAdded\n"
                                              "leak:QPlatformScreen::QPlatformScreen\n"
                                              "leak:QQuickPointerDevice::touchDevice\n"
                                              "leak:QtSharedPointer::ExternalRefCountData::getAndRef\n";

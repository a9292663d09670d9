#pragma once

#include <memory>

class QCoreApplication;

namespace Orn::ColorManagement {
class ColorManagementEngine;
}

/// The steps of the start-up that main takes in their fixed order. Main thread.
namespace Zph::Applications::Player::Startup {

/// The full version line, as --version prints it.
extern const char* const kVersionLine;

/// Attributes and the default OpenGL format, ahead of the application object.
void setApplicationAttributes();
/// The log file and the handler of Qt's messages.
void startLogging();
void registerFonts();
/// The order of registration is the order in which codecs are asked.
void registerCodecs();
void loadTheme();
/// What makes pictures for image inputs, behind the codecs.
void registerImageServers();
std::shared_ptr<Orn::ColorManagement::ColorManagementEngine> makeColorEngine();
/// Installation, user data and every setting, into the log.
void logEnvironment();

} // namespace Zph::Applications::Player::Startup

// The EXPORT command: a picture of the current drawing.
#pragma once

namespace zepk::render {

// Registers EXPORT with the host's commands.
void registerRenderCommands();

}  // namespace zepk::render

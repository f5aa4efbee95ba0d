// Writes a scene as a small playable AVI file (uncompressed 24-bit frames).
#pragma once

#include <string>

// Frames of the scene's test picture, `seconds` long at 25 frames per second.
bool WriteSceneAvi(const std::string& path, int nScene, int nPattern, int seconds);

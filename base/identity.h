// identity.h - what the plugin is called, in one place.
#pragma once

inline constexpr const char* kPluginName = "Corvalis";
inline constexpr const char* kPluginVersion = "1.3.0";
inline constexpr const char* kPluginAuthor = "Quarrytone Studio";
inline constexpr const char* kPluginDescription = "MSFS 2024 自动切频与无线电语音效果插件。Quarrytone Studio 制作。";
inline constexpr const char* kDllName = "corvalis_win64.dll";

// asking_client: a voice client that loads the plugin, asks which interface version it answers and ends with that
// number as its exit code. Tests copy it under a client's name and give it a client's version.
//   asking_client DLL
#include <windows.h>
#include <cwchar>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR commandLine, int) {
    using ApiVersion = int (*)();
    const HMODULE plugin = LoadLibraryW(commandLine);
    const auto address = plugin ? GetProcAddress(plugin, "ts3plugin_apiVersion") : nullptr;
    if (!address) return 1;
    const int answer = reinterpret_cast<ApiVersion>(reinterpret_cast<void*>(address))();
    FreeLibrary(plugin);
    return answer;
}

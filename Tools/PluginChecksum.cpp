// Prints what a plug-in carries in its section ".ov.checksum": PluginChecksum FILE

#include "Commands/PluginFile.h"

#include <cstdio>

int main(int count, char** texts)
{
    const std::string checksum = count == 2 ? PluginFile(std::string(texts[1])).CalculateChecksum() : "";
    std::fputs(checksum.c_str(), stdout);
    return checksum.empty() ? 1 : 0;
}

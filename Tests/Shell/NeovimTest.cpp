// The language server and Neovim, which has a client of its own.

#include "Support/TestFiles.h"

#include <gtest/gtest.h>

TEST(NeovimTest, GetsWhatTheServerKnows)
{
    const TemporaryFolder folder;
    folder.Write("script.labsh", "Set target=37\nCacl target\n");
    const std::string command = "cd " + folder.GetPath() +
        "; XDG_CONFIG_HOME=none XDG_DATA_HOME=none XDG_STATE_HOME=none XDG_CACHE_HOME=. timeout 100 nvim --headless -u "
        "NONE -i NONE -n"
        " --cmd 'set runtimepath^=" SOURCE_DIR "/Editors/vim' --cmd 'filetype plugin on'"
        " --cmd 'lua labsh, transcript = [[" LABSH_FILE "]], [[transcript]]'"
        " -c 'luafile " SOURCE_DIR "/Tests/Shell/Neovim.lua' >messages 2>&1 </dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << folder.Read("messages") << "(the package neovim is needed)";
    EXPECT_EQ(folder.Read("transcript"), R"(filetype labsh, omnifunc v:lua.vim.lsp.omnifunc
diagnostics of the script:
  2:1: Unknown command: Cacl (did you mean Calc?) [S001]
none of what was typed over it
completion of "Calc Ro":
  Round(number, decimals): The number as a text with 0 to 15 decimals
as chosen: Calc Round(
hover: variable target = 37
signature: Round(number, decimals)
definition: line 1
formatted: If target>1 Then Echo "a  b"; Calc target
ended
)");
}

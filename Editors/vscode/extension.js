// Starts `labsh --lsp` for the scripts that are open, and ends it with the editor.
const { workspace } = require("vscode");
const { LanguageClient } = require("vscode-languageclient/node");

let client;

exports.activate = function () {
    const settings = workspace.getConfiguration("labsh");
    const server = { command: settings.get("command"), args: [...settings.get("arguments"), "--lsp"] };
    client = new LanguageClient("labsh", "labsh", server, { documentSelector: [{ language: "labsh" }] });
    return client.start();
};

exports.deactivate = function () {
    return client && client.stop();
};

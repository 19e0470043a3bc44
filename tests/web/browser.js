// browser.js: runs the script at standard input as a page would, as far as it needs no page.
import { readFileSync } from "node:fs";
import { WebSocket } from "ws";

globalThis.WebSocket = WebSocket;
new Function(readFileSync(0, "utf8"))();

// browser.js: runs the script at standard input as a page of this machine would, as far as it needs no page.
import { readFileSync } from "node:fs";
import { WebSocket } from "ws";

globalThis.WebSocket = class extends WebSocket {
  constructor(address, protocols) {
    super(address, protocols, { origin: "http://localhost:8000" });
  }
};
new Function(readFileSync(0, "utf8"))();

// clients.js ADDRESS STREAMS: clients of a host that draw nothing. One does what the page does: it takes all records in batches,
// reads them, and asks what the page asks. STREAMS others take all records, too, each for itself, as often as the host sends
// them. As they are to stand for other machines, they run at the lowest priority. A line tells when all get records; they end,
// and what they took and missed is told, with the standard input.
import { setPriority } from "node:os";
import { WebSocket } from "ws";

const [address, streams] = process.argv.slice(2);
const pace = 100, period = 5_000; // milliseconds, as the page has them for a scene as large
setPriority(19);

const ask = async (path) => (await fetch(new URL(path, address))).json();

class Client {
  records = 0;
  dropped = 0;
  #waiting;

  constructor(labels, wish) {
    this.socket = new WebSocket(address.replace(/^http/, "ws"), ["ostrel.batch.v1"], { perMessageDeflate: false });
    const says = [...wish, { op: "subscribe", labels }];
    this.socket.on("open", () => says.forEach((message) => this.socket.send(JSON.stringify(message))));
    this.flows = new Promise((resolve, reject) => {
      this.#waiting = resolve;
      this.socket.on("error", reject);
    });
    this.socket.on("message", (data) => this.#take(JSON.parse(data)));
  }

  #take({ op, records, dropped }) {
    if (op !== "batch") return;
    this.records += records.length;
    this.dropped = dropped;
    this.#waiting();
  }
}

const slots = await ask("/slots");
const labels = slots.filter(({ direction }) => direction === "out").map(({ label }) => label);
const clients = [new Client(labels, [{ op: "pace", milliseconds: pace }])];
for (let i = 0; i < streams; ++i) clients.push(new Client(labels, []));
await Promise.all(clients.map(({ flows }) => flows));
console.log("all flow");
const asking = setInterval(() => Promise.all(["/host", "/slots", "/flow"].map(ask)).catch(() => {}), period);

process.stdin.on("end", () => {
  clearInterval(asking);
  const sum = (name) => clients.reduce((all, client) => all + client[name], 0);
  console.log(JSON.stringify({ records: sum("records"), dropped: sum("dropped") }));
  clients.forEach(({ socket }) => socket.terminate());
}).resume();

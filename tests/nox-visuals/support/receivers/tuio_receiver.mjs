// Prints what a TUIO 1.1 client makes of the bundles that come to a UDP port.
// usage: node tuio_receiver.mjs FOLDER PORT, with FOLDER as fetch left it
import { createRequire } from 'node:module';
import { pathToFileURL } from 'node:url';

const [folder, port] = process.argv.slice(2);
const osc = createRequire(pathToFileURL(`${folder}/`))('osc');
const { Tuio11Client, TuioReceiver } = await import(
  pathToFileURL(`${folder}/node_modules/tuio-client/dist/tuio-client.es.js`));

class UdpReceiver extends TuioReceiver {
  #port = new osc.UDPPort({ localAddress: '127.0.0.1', localPort: Number(port) });

  connect() {
    this.#port.on('ready', () => console.log('ready'));
    this.#port.on('message', ({ address, args }) => this.onOscMessage({ address, args }));
    this.#port.on('error', (error) => console.log('error', error.message));
    this.#port.open();
  }

  disconnect() {
    this.#port.close();
  }
}

const tell = (what) => (cursor) =>
  console.log(what, cursor.sessionId, cursor.position.x.toFixed(4), cursor.position.y.toFixed(4));
const ignore = () => {};
const client = new Tuio11Client(new UdpReceiver());
client.addTuioListener({
  addTuioCursor: tell('add'),
  updateTuioCursor: tell('update'),
  removeTuioCursor: tell('remove'),
  addTuioObject: ignore,
  updateTuioObject: ignore,
  removeTuioObject: ignore,
  addTuioBlob: ignore,
  updateTuioBlob: ignore,
  removeTuioBlob: ignore,
  refresh: () => console.log('refresh'),
});
client.connect();

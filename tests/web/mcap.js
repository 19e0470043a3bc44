// Recordings, as others read them: by their index.
import { McapIndexedReader } from "@mcap/core";
import { open } from "node:fs/promises";

// Calls use(reader) with a reader of the file. It throws where the file has no whole index.
export async function withRecording(path, use) {
  const file = await open(path);
  try {
    const readable = {
      size: async () => BigInt((await file.stat()).size),
      read: async (offset, length) => {
        const bytes = new Uint8Array(Number(length));
        const { bytesRead } = await file.read(bytes, 0, bytes.length, Number(offset));
        if (bytesRead !== bytes.length) throw new Error(`${path} ends before byte ${offset + length}`);
        return bytes;
      },
    };
    return await use(await McapIndexedReader.Initialize({ readable }));
  } finally {
    await file.close();
  }
}

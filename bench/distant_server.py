#!/usr/bin/env python3
"""distant_server.py FOLDER PORT MILLISECONDS: serves a folder by HTTP/1.1 with connections that are
kept, as a server does to which a round trip takes so long. A kernel may lack delays of its own, so
a relay holds what goes either way for half the time, and the first bytes of a connection for a
whole round trip more, which its opening would take."""

import asyncio
import functools
import http.server
import sys
import threading

PIECE = 1 << 16


class Handler(http.server.SimpleHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    wbufsize = -1  # head and body in one piece

    def log_message(self, *_):
        pass


def serve(folder, port):
    handler = functools.partial(Handler, directory=folder)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", port), handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


async def carry(reader, writer, first_delay, delay):
    """Passes on each piece when its time has come; pieces that follow do not wait for it to go."""
    now = asyncio.get_running_loop().time
    on_the_way = asyncio.Queue()

    async def arrive():
        while (item := await on_the_way.get()) is not None:
            due, piece = item
            await asyncio.sleep(due - now())
            writer.write(piece)
            await writer.drain()
        writer.close()

    arriving = asyncio.create_task(arrive())
    opened = now() + first_delay
    try:
        while piece := await reader.read(PIECE):
            on_the_way.put_nowait((max(now(), opened) + delay, piece))
    except ConnectionError:
        pass
    on_the_way.put_nowait(None)
    try:
        await arriving
    except ConnectionError:
        pass


async def relay(port, server_port, delay):
    async def connect(reader, writer):
        from_server, to_server = await asyncio.open_connection("127.0.0.1", server_port)
        await asyncio.gather(
            carry(reader, to_server, 2 * delay, delay), carry(from_server, writer, 0, delay)
        )

    async with await asyncio.start_server(connect, "127.0.0.1", port) as listener:
        await listener.serve_forever()


def main():
    folder, port, milliseconds = sys.argv[1], int(sys.argv[2]), float(sys.argv[3])
    if milliseconds == 0:
        serve(folder, port)
        threading.Event().wait()
    asyncio.run(relay(port, serve(folder, 0), milliseconds / 2000))


if __name__ == "__main__":
    main()

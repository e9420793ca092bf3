#!/usr/bin/env python3
"""relay.py PORT SERVER_PORT MILLISECONDS: passes on what comes to a port of 127.0.0.1 as if the
server were a round trip of that time away. A kernel may have no delays to offer, so what goes
either way is held back for half the time, and the first bytes of a connection for a whole round
trip more, which its opening would take."""

import asyncio
import sys

PIECE = 1 << 16


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


asyncio.run(relay(int(sys.argv[1]), int(sys.argv[2]), float(sys.argv[3]) / 2000))

"""Runs the development service until it is interrupted."""

import argparse
import logging
import signal
import sys
from pathlib import Path

from misbehaviour import MISBEHAVIOURS
from server import AnalysisServer


def main():
    parser = argparse.ArgumentParser(prog="analysis_service", description=__doc__)
    parser.add_argument("--port", type=int, default=0, help="port on loopback; 0 picks a free one")
    parser.add_argument("--port-file", type=Path, help="file that receives the port once the service listens")
    parser.add_argument("--data", type=Path, required=True, help="folder of the database and the log")
    parser.add_argument("--requirements", type=Path, required=True, help="folder of <referrer>.json files")
    parser.add_argument("--record", type=Path, help="file that receives every request, one JSON line each")
    parser.add_argument("--misbehave", choices=sorted(MISBEHAVIOURS), help="a fault that every answer has")
    arguments = parser.parse_args()

    logging.basicConfig(level=logging.INFO, stream=sys.stderr, format="%(asctime)s %(levelname)s %(message)s")
    server = AnalysisServer(arguments.port, arguments.data, arguments.requirements,
                            record=arguments.record, misbehave=arguments.misbehave)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
    port = server.server_address[1]
    if arguments.port_file:
        arguments.port_file.write_text(str(port))
    print(f"Listening on 127.0.0.1:{port}", flush=True)
    try:
        server.serve_forever()
    except KeyboardInterrupt:
        pass
    finally:
        server.server_close()


main()

"""A collector of hits: a real nginx with TLS on the loopback, in the manners a test wants of it."""

import json
import socket
from pathlib import Path
from urllib.parse import unquote, urlsplit

from . import waiting

_CONFIGURATION = """
daemon off;
master_process off;
pid {folder}/nginx.pid;
error_log {folder}/nginx-error.log info;
events {{ worker_connections 64; }}
http {{
  log_format hit escape=json '{{"uri":"$request_uri","agent":"$http_user_agent",'
    '"method":"$request_method","status":$status,"ended":$msec,"took":$request_time,'
    '"connection":$connection,"request":$connection_requests}}';
  access_log {folder}/hits.log hit;
  client_body_temp_path {folder}/body;
  proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi;
  uwsgi_temp_path {folder}/uwsgi;
  scgi_temp_path {folder}/scgi;
  server {{
    listen 127.0.0.1:{port} ssl;
    ssl_certificate {certificate};
    ssl_certificate_key {key};
    {server}
    location / {{ {answer} }}
  }}
}}
"""


class Hit:
    def __init__(self, line):
        entry = json.loads(line)
        self.parts = urlsplit(entry["uri"])
        self.pairs = [tuple(map(unquote, pair.partition("=")[::2]))
                      for pair in self.parts.query.split("&")]
        self.parameters = dict(self.pairs)
        self.user_agent = entry["agent"]
        self.method, self.status = entry["method"], entry["status"]
        self.connection, self.request = entry["connection"], entry["request"]
        self.ended, self.began = entry["ended"], entry["ended"] - entry["took"]

    def __getitem__(self, name):
        return self.parameters[name]

    def __repr__(self):
        return f"<hit {self.parts.query}>"


class Collector:
    """answer: what nginx does with a request; server: more lines for its server block."""

    def __init__(self, session, answer="return 200;", server="", certificate="server", port=0):
        self._processes, self._environment = session.processes, session.environment
        self.folder = Path(session.folder, f"collector{port or ''}")
        self.folder.mkdir()
        self._stalled = None
        if answer == "stall":
            self._stalled = socket.create_server(("127.0.0.1", 0), backlog=64)
            upstream = self._stalled.getsockname()[1]
            answer = f"proxy_pass http://127.0.0.1:{upstream}; proxy_read_timeout 300s;"
        self.port = port or free_port()
        Path(self.folder, "nginx.conf").write_text(_CONFIGURATION.format(
            folder=self.folder, port=self.port, answer=answer, server=server,
            certificate=session.tls / f"{certificate}.pem",
            key=session.tls / f"{certificate}.key"), encoding="utf-8")
        self.process = self._processes.start(
            "nginx", ["nginx", "-c", f"{self.folder}/nginx.conf", "-p", str(self.folder),
                      "-e", f"{self.folder}/nginx-error.log"], self._environment)
        waiting.wait_for(self._answers, "nginx to listen")

    def _answers(self):
        if self.process.poll() is not None:
            raise AssertionError("nginx ended: " + self.complaints())
        with socket.socket() as probe:
            return probe.connect_ex(("127.0.0.1", self.port)) == 0

    def hits(self):
        log = self.folder / "hits.log"
        if not log.exists():
            return []
        lines = log.read_text(encoding="utf-8").split("\n")[:-1]
        return [Hit(line) for line in lines if "/collect" in line]

    def wait_for_hits(self, count):
        waiting.wait_for(lambda: len(self.hits()) >= count, f"{count} hits at the collector")
        return self.hits()

    def complaints(self):
        log = self.folder / "nginx-error.log"
        return log.read_text(encoding="utf-8") if log.exists() else ""

    def end(self):
        self._processes.end(self.process)


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as probe:
        return probe.getsockname()[1]


def free_port_held():
    """A port on which connections are refused for as long as the answered socket lives."""
    holder = socket.socket()
    holder.bind(("127.0.0.1", 0))
    return holder, holder.getsockname()[1]

"""The installed product: one tree for each test, and the certificates of the test collectors.

The build folder comes in VORNIX_BUILD. ctest's set-up step calls prepare() once; it makes the
certificates and proves that an installation works.
"""

import fcntl
import os
import plistlib
import shutil
import subprocess
from pathlib import Path

BUILD = Path(os.environ.get("VORNIX_BUILD", Path(__file__).resolve().parents[3] / "build" / "dev"))
TLS = BUILD / "e2e" / "tls"
# Everything that can be installed, for tests that only look at it.
WHOLE = BUILD / "e2e" / "prefix"
MAIN, CATEGORY, BACKUP = "UA-TEST-MAIN", "UA-TEST-SCHEDULER", "UA-TEST-BACKUP"

_EXTENSIONS = """[req]
distinguished_name = name
[name]
[ca]
basicConstraints = critical, CA:TRUE
keyUsage = keyCertSign
[leaf]
subjectAltName = IP:127.0.0.1, DNS:localhost
"""


def _openssl(folder, *words):
    run = subprocess.run(["openssl", *words], cwd=folder, capture_output=True, text=True)
    if run.returncode != 0:
        raise AssertionError(f"openssl {' '.join(words)}: {run.stderr}")


def _certificate(folder, name, section, issuer=None):
    key = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"]
    common = ["-config", "tls.conf", "-subj", f"/CN=Vornix test {name}"]
    signed = ["-CA", f"{issuer}.pem", "-CAkey", f"{issuer}.key"] if issuer else []
    _openssl(folder, "req", "-x509", *key, *common, "-extensions", section, *signed, "-days", "2",
             "-keyout", f"{name}.key", "-out", f"{name}.pem")


def make_certificates(folder):
    """ca, server (signed by it) and stranger (signed by nobody we trust)."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    (folder / "tls.conf").write_text(_EXTENSIONS, encoding="utf-8")
    _certificate(folder, "ca", "ca")
    _certificate(folder, "server", "leaf", "ca")
    _certificate(folder, "stranger", "leaf")


def install(prefix, *options):
    """Installs the build under the prefix; one at a time, since each writes the build's manifest."""
    with open(BUILD / "install.lock", "w", encoding="utf-8") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        run = subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix, *options],
                             capture_output=True, text=True)
    if run.returncode != 0:
        raise AssertionError(f"cmake --install: {run.stdout}{run.stderr}")


class Tree:
    """The programs and what belongs to them, for one test to change."""

    def __init__(self, prefix):
        self.prefix = Path(prefix)
        install(self.prefix, "--component", "runtime")
        self.agent = self.prefix / "libexec" / "vornix" / "vornix-scheduler"
        self.services = self.prefix / "share" / "dbus-1" / "services"

    def configure_analytics(self, host, authority):
        path = self.prefix / "share" / "vornix-scheduler" / "Analytics.plist"
        values = plistlib.loads(path.read_bytes())
        values.update(CollectionHost=host, CertificateAuthorityFile=str(authority),
                      ProductionIdentifier=MAIN, BackupIdentifier=BACKUP)
        values["CategoryIdentifiers"]["Scheduler"] = CATEGORY
        path.write_bytes(plistlib.dumps(values))


def prepare():
    make_certificates(TLS)
    shutil.rmtree(WHOLE, ignore_errors=True)
    install(WHOLE)


if __name__ == "__main__":
    prepare()

"""A print service of a test's own: CUPS on a socket in a scratch folder, with one queue whose jobs stay in its spool.

Needs cupsd and lpadmin. The system's own print service is neither asked nor changed.
"""

import getpass
import os
import shutil
import subprocess

from display import wait_for

QUEUE = "ShopFloor"

SETTINGS = """Listen {folder}/cups.sock
PreserveJobFiles Yes
WebInterface No
Browsing No
DefaultAuthType None
<Location />
  Order allow,deny
  Allow all
</Location>
<Location /admin>
  Order allow,deny
  Allow all
</Location>
<Policy default>
  <Limit All>
    Order allow,deny
    Allow all
  </Limit>
</Policy>
"""

FILES = """FileDevice Yes
ServerRoot {folder}/etc
ServerBin {root}/lib/cups
DataDir {root}/share/cups
DocumentRoot {folder}
RequestRoot {folder}/spool
CacheDir {folder}/cache
StateDir {folder}/state
TempDir {folder}/tmp
AccessLog {folder}/log/access
ErrorLog {folder}/log/error
PageLog {folder}/log/page
User {user}
Group {group}
SystemGroup sys
"""


class PrintService:
    """A running service; `socket` is what CUPS_SERVER has to name, `job` the file that the first job came as."""

    def __init__(self, display):
        """Gives up with RuntimeError where none can be set up."""
        places = os.environ.get("PATH", "") + ":/usr/sbin:/usr/bin"
        self.tools = {name: shutil.which(name, path=places) for name in ("cupsd", "lpadmin")}
        missing = [name for name, path in self.tools.items() if path is None]
        if missing:
            raise RuntimeError(f"no {' and no '.join(missing)} installed")
        self.folder = os.path.join(display.scratch, "cups")
        self.socket = os.path.join(self.folder, "cups.sock")
        self.job = os.path.join(self.folder, "spool", "d00001-001")
        os.chmod(display.scratch, 0o755)  # the service's own user has to come through
        for name in ("etc", "spool", "cache", "state", "tmp", "log"):
            os.makedirs(os.path.join(self.folder, name))
            os.chmod(os.path.join(self.folder, name), 0o777 if name in ("tmp", "log") else 0o755)
        self._start(display)

    def _start(self, display):
        is_root = os.getuid() == 0
        words = {"folder": self.folder, "root": os.path.dirname(os.path.dirname(self.tools["cupsd"])),
                 "user": "lp" if is_root else getpass.getuser(), "group": "lp"}
        arguments = []
        for option, name, text in (("-c", "cupsd.conf", SETTINGS), ("-s", "cups-files.conf", FILES)):
            path = os.path.join(self.folder, "etc", name)
            with open(path, "w", encoding="ascii") as file:
                file.write(text.format(**words))
            arguments += [option, path]
        service = display.start([self.tools["cupsd"], "-f", *arguments], stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)
        wait_for("the print service", lambda: os.path.exists(self.socket) or service.poll() is not None)
        if service.poll() is not None:
            raise RuntimeError(f"cupsd ended with {service.returncode}")
        for words in (["-p", QUEUE, "-E", "-v", "file:/dev/null", "-m", "raw"], ["-d", QUEUE]):
            done = subprocess.run([self.tools["lpadmin"], *words], env=dict(os.environ, CUPS_SERVER=self.socket),
                                  stderr=subprocess.PIPE, check=False)
            if done.returncode != 0:
                raise RuntimeError(f"lpadmin: {done.stderr.decode(errors='replace').strip()}")

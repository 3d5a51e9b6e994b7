"""A stage for tests of the script `corvel`: a copy of the script in a folder of its own, and a PATH that
holds the real small tools and stand-ins for those that install, configure and build.

Every stand-in writes its name and arguments to one list of calls. The script always runs as a user that
is not root, since root could neither be refused a folder nor lack sudo.
"""

import os
import pathlib
import shutil
import subprocess
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
NOBODY = 65534
REAL_TOOLS = (
    "awk basename bash cat chmod cksum cp dirname env find flock grep head ls mkdir mv nproc printf readlink rm "
    "sleep sort stat tail touch tr true wc"
).split()

# Each sees $STAGE, the stage's folder.
STAND_INS = {
    "dpkg": 'echo amd64',
    # Asked for names; `installed` has one name a line: `name`, or `name:all`, `name:i386` for what fits any or
    # another architecture, or `name:removed` for one whose settings alone were left.
    "dpkg-query": r'''
declare -A installed
while read -r name; do installed[$name]=1; done < "$STAGE/installed"
for name in "$@"; do
    [[ -z ${installed[$name]-} ]] || echo "$name|amd64|installed"
    [[ -z ${installed[$name:all]-} ]] || echo "$name|all|installed"
    [[ -z ${installed[$name:i386]-} ]] || echo "$name|i386|installed"
    [[ -z ${installed[$name:removed]-} ]] || echo "$name|amd64|config-files"
done
true''',
    "apt-cache": r'''for name in "$@"; do last=$name; done; grep -qxF -- "$last" "$STAGE/known"''',
    "apt-get": r'''
word=$1
case $word in
    update) cp "$STAGE/offered" "$STAGE/known" ;;
    install)
        if [[ -s $STAGE/apt.fails ]]; then
            cat "$STAGE/apt.fails"
            [[ ! -e $STAGE/apt.fails.once ]] || rm "$STAGE/apt.fails"
            exit 100
        fi
        for name in "$@"; do
            [[ $name == -* || $name == install || $name == *=* ]] || echo "$name" >> "$STAGE/installed"
        done
        ;;
esac''',
    "sudo": r'''[[ ! -e $STAGE/sudo.refuses ]] || exit 1; shift; exec "$@"''',
    "g++": 'echo 12.2.0',
    "df": r'''
echo Avail
cat "$STAGE/free"''',
    "cmake": r'''
[[ ! -e $STAGE/cmake.fails ]] || { cat "$STAGE/cmake.fails"; exit 1; }
while (($#)); do [[ $1 != -B ]] || build=$2; shift; done
mkdir -p "$build/bin"
touch "$build/build.ninja" "$build/CMakeCache.txt"
for program in corvel-demo corvel-phone corvel-bench; do
    printf '#!/bin/bash\nprintf "%%s|" "%s" "$PWD" "$@"\nexit ${PROGRAM_STATUS:-0}\n' "$program" > "$build/bin/$program"
    chmod +x "$build/bin/$program"
done''',
    "ninja": r'''
[[ ! -e $STAGE/ninja.prints ]] || cat "$STAGE/ninja.prints"
[[ ! -e $STAGE/ninja.fails ]]''',
    "ctest": r'''
if [[ " $* " == *" -N "* ]]; then
    [[ " $* " != *" -R objc "* ]] || echo "  Test #1: objc_test"
    exit 0
fi
echo "filter: ${GTEST_FILTER-none}, one of ${CORVEL_TEST_EVERY-1}"
cat "$STAGE/ctest.prints"
[[ ! -e $STAGE/ctest.fails ]]''',
}


class Stage:
    """Use in a `with`. `folder` has a space in its name on purpose."""

    def __enter__(self):
        self.temporary = tempfile.TemporaryDirectory(prefix="corvel script ")
        self.top = pathlib.Path(self.temporary.name)
        self.folder = self.top / "a clone"
        self.tools = self.top / "bin"
        self.tools.mkdir()
        self.folder.mkdir()
        for name in ("corvel", "CMakePresets.json"):
            shutil.copy2(ROOT / name, self.folder / name)
        for name in ("tools", "packages", ".ci"):
            shutil.copytree(ROOT / name, self.folder / name)
        for name in REAL_TOOLS:
            (self.tools / name).symlink_to(shutil.which(name))
        for name, body in STAND_INS.items():
            self.stand_in(name, body)
        everything = "".join(f"{name}\n" for name in self.packages("build", "test", "bench", "window", "lint", "format"))
        self.write("installed", everything)
        self.write("known", everything)
        self.write("offered", everything)
        self.write("free", "99999999\n")
        self.write("ctest.prints", "1/1 Test #1: objc_test ....   Passed    0.01 sec\n")
        self.write("calls", "")
        self.own()
        return self

    def offer_device(self, sysroot="echo Unpacking"):
        """What `test --device` needs; the commands given unpack the libraries for arm64."""
        (self.folder / "device").mkdir()
        script = self.folder / "device" / "sysroot.sh"
        script.write_text(f"#!/bin/bash\n{sysroot}\n")
        script.chmod(0o755)
        with open(self.top / "installed", "a", encoding="utf-8") as installed:
            installed.write("".join(f"{name}\n" for name in self.packages("package", "device_test")))

    def __exit__(self, *_):
        self.temporary.cleanup()

    def own(self):
        """Gives everything to the user that the script runs as."""
        if os.geteuid() == 0:
            for folder, folders, files in os.walk(self.top):
                for name in [folder, *(os.path.join(folder, name) for name in folders + files)]:
                    os.chown(name, NOBODY, NOBODY, follow_symlinks=False)

    def stand_in(self, name, body):
        path = self.tools / name
        path.unlink(missing_ok=True)
        path.write_text(f'#!/bin/bash\nprintf \'%s\\n\' "{name} $*" >> "$STAGE/calls"\n{body}\n')
        path.chmod(0o755)

    def write(self, name, text):
        (self.top / name).write_text(text)

    def remove_tool(self, name):
        (self.tools / name).unlink()

    def packages(self, *lists):
        names = []
        for name in lists:
            for line in (self.folder / "packages" / f"{name}.txt").read_text().splitlines():
                if (line := line.split("#")[0].strip()) and line not in names:
                    names.append(line)
        return names

    def start(self, *arguments, cwd=None, command=None, **environment):
        """Starts the script; gives its process, with pipes for both outputs."""
        self.write("calls", "")
        self.own()
        user = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        return subprocess.Popen(
            [command or str(self.folder / "corvel"), *arguments], cwd=cwd or self.folder, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            env={"PATH": str(self.tools), "STAGE": str(self.top), "HOME": str(self.top), **environment}, **user,
        )

    def run(self, *arguments, **how):
        """Runs the script; the result has returncode, stdout, stderr, and `calls`, the stand-ins' calls."""
        with self.start(*arguments, **how) as process:
            try:
                output, errors = process.communicate(timeout=60)
            except subprocess.TimeoutExpired:
                process.kill()
                raise
        result = subprocess.CompletedProcess(process.args, process.returncode, output, errors)
        result.calls = (self.top / "calls").read_text().splitlines()
        return result

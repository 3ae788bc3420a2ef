"""What is allowed where: the tables of scripts/check-source. An exception is an entry with its reason."""

# Top folders, each with those whose headers it may include. A pair names single headers, which stand
# alone: they need no library of that folder. The rule `layers` compares this with the link lines and with
# docs/architecture.md.
MIDAPI_VOCABULARY = ("Utils", ("Utils/Ascii.h", "Utils/FirmwareTypes.h", "Utils/FlashSettings.h"))
INSTANCE_CLASSES = ("inventory", (
    "inventory/Orvex_EthernetPort.h", "inventory/Orvex_PortController.h",
    "inventory/Orvex_SoftwareIdentity.h", "inventory/Orvex_SoftwareIdentityResource.h"))
MAY_INCLUDE = {
    "platform": ["platform"],
    "Utils": ["Utils", "platform"],
    "Os": ["Os", "Utils", "platform"],
    "core": ["core", "Utils"],
    "cim": ["cim", "core", "Utils"],
    "midapi": ["midapi", "platform", MIDAPI_VOCABULARY],
    "inventory": ["inventory", "cim", "core", "Os", "Utils", "platform", "midapi"],
    "agent": ["agent", INSTANCE_CLASSES, "cim", "core", "Os", "Utils", "platform", "midapi"],
    "cimxml": ["cimxml", "core", "Utils"],
    "http": ["http", "Utils", "platform"],
    "wbem": ["wbem", "cimxml", "cim", "core", "Os", "Utils"],
    "host": ["host", "core", "Os", "Utils", "platform"],
    "daemon": ["daemon", "host", "http", "wbem", "cimxml", "core", "Os", "Utils", "platform"],
    "client": ["client", "http", "cimxml", "cim", "core", "Utils", "platform"],
    "cli": ["cli", "client", "host", "midapi", "cim", "core", "Os", "Utils", "platform"],
    "tests": None,  # anything
    "bench": None,
}

# The namespaces that the files of a folder open (the longest folder counts), with the reason for each that
# is not the folder's own.
NAMESPACES = {
    "Utils": {"utils": None},
    "Os": {"os": None, "utils": "defines the classes that Utils/ declares, and those named with them"},
    "platform": {"platform": None},
    "core": {"core": None},
    "cim": {"cim": None},
    "midapi": {"ma": "the flash library's name in the interfaces of its users"},
    "inventory": {"inventory": None},
    "agent": {"agent": None, "core": "core::SoftwareUpdateAgent, as hosts know it"},
    "cimxml": {"cimxml": None},
    "http": {"http": None},
    "wbem": {"wbem": None},
    "host": {"host": None, "CLI": "declares the argument parser without its header"},
    "daemon": {"quorveld": "the program's name: unistd.h declares a function daemon"},
    "client": {"client": None},
    "cli": {"cli": None},
    "bench": {"bench": None},
    "tests": {"test": None},
    "tests/core": {"test": None, "core": "a printer stands in the namespace of what it prints"},
    "tests/agent": {"test": None, "ma": "the flash library that a test plays"},
    "tests/modules": {"test": None, "core": "a printer stands in the namespace of what it prints"},
    "tests/cli": {"test": None, "cli": "a printer stands in the namespace of what it prints"},
    "tests/client": {"test": None, "client": "a printer stands in the namespace of what it prints"},
}
# What headers of a folder may declare outside of all namespaces: pattern and reason.
GLOBAL_NAMES = {
    "cim": [("CIM_*", "the schema's names")],
    "inventory": [("Orvex_*", "served classes and their providers")],
    "agent": [
        ("Orvex_*", "served classes and their providers"),
        ("ConcreteJobFactory", "a singleton that hosts see under this name"),
        ("JobThread", "logged under this name"),
        ("ORVEX_DEFINE_REFUSAL", "the errors of jobs, whose texts begin with their unqualified names"),
        ("RegisterSoftwareUpdateAgent", "the module's entry"),
        ("DllMain", "the module's entry, as the loader calls it"),
    ],
    "midapi/Kernel": [
        ("mnl_socket", "declares libmnl's socket without its header"),
        ("pci_access", "declares libpci's state without its header"),
    ],
    "tests/fuzz": [("LLVMFuzzer*", "what libFuzzer calls")],
}

# Files that may use the standard library's mutexes and locks, which the compiler's analysis of thread
# safety does not see.
PLAIN_MUTEX = {
    "platform/Mutex.h": "the annotated mutex is made of it",
}

# Folders that speak to one operating system.
OS_FOLDERS = (
    "platform/Posix/", "platform/Windows/", "Os/Posix/", "Os/Windows/", "midapi/Posix/", "midapi/Windows/",
    "midapi/Kernel/", "daemon/Posix/", "http/Posix/",
    "cli/Posix/", "cli/Windows/", "agent/Posix/", "agent/Windows/", "inventory/Posix/",
    "inventory/Windows/", "bench/Posix/", "packaging/windows/",
)
# Tests may include an OS header anywhere; conditionals stay in folders named for a platform.
OS_HEADERS_ALSO_IN = ("tests/",)
OS_CONDITIONALS_ALSO_IN = {
    "Utils/Export.h": "the export macro differs by object format",
    "midapi/Export.h": "the export macro differs by object format",
}

# The boundaries that no exception may cross; a catch-all there reports what it caught.
CATCH_ALL_BOUNDARIES = {
    "Os/Thread.cpp": "top of a thread",
    "Os/LoadHook.cpp": "loader hook",
    "Os/FileCalls.cpp": "top of a thread: whoever waits for the call gets what it throws",
    "Os/Uri.cpp": "whatever keeps a file from being looked at, it cannot be an image",
    "Os/QuorvelConfig.cpp": "an unreadable configuration leaves the defaults in force",
    "agent/JobThread.cpp": "top of the job's thread",
    "agent/Orvex_ConcreteJob.cpp": "whatever keeps a thread from starting, the job has not started",
    "agent/Orvex_ConcreteJobClass.cpp": "one job's failure must not end the refresh of the others",
    "agent/Orvex_SoftwareInstallationService.cpp": "a method answers with a return code, whatever happened",
    "cli/Main.cpp": "top of the program",
    "daemon/Main.cpp": "top of the program",
    "daemon/AuditQueue.cpp": "top of a thread: what it meets is counted as a record that is lost",
    "daemon/PeriodicTask.cpp": "top of a thread: what the task throws is logged",
    "daemon/RunningJobs.cpp": "top of a thread: whoever waits for the count gets what it throws",
    "http/Connection.cpp": "a request's failure is answered, and ends neither its connection nor the server",
}

# Sources without a test file of their own: pattern, reason, and the tests that cover them instead
# (a pattern of which one file must exist; None where no file stands for it).
NO_OWN_TEST = [
    ("cim/*.cpp", "the schema classes are tables; table-driven tests walk them all",
     "tests/cim/*Test.cpp"),
    ("agent/*Texts.cpp", "tables; a test over all classes walks them", "tests/modules/ClassTextsTest.cpp"),
    ("inventory/*Texts.cpp", "as the agent's", "tests/modules/ClassTextsTest.cpp"),
    ("wbem/*Texts.cpp", "tables; a test over the server's own classes walks them",
     "tests/wbem/InteropClassesTest.cpp"),
    ("cli/Main.cpp", "the program's entry point: one call", None),
    ("daemon/Main.cpp", "the program's entry point: one call", None),
    ("http/Libraries.cpp", "other people's code, compiled here", None),
    ("platform/Posix/PosixStayAwake.cpp", "asks nothing of anybody", None),
    ("cli/Posix/ConsoleText.cpp", "asks nothing of anybody", None),
    ("cli/Posix/LocalWords.cpp", "the words are written for it", None),
    ("midapi/Windows/NoKernelBackend.cpp", "there is none", None),
    ("*/Posix/LoadHook.cpp", "runs when a module is loaded; the tests over the real modules load it", None),
    ("*/Windows/LoadHook.cpp", "as on POSIX", None),
]

# The platforms, and the variable by which build files choose one.
PLATFORMS = ("Posix", "Windows")
PLATFORM_VARIABLE = "${QUORVEL_PLATFORM_DIR}"

# Folders whose sources need tests.
TESTED_FOLDERS = (
    "platform", "Utils", "Os", "core", "cim", "midapi", "inventory", "agent", "cimxml", "http", "wbem",
    "host", "client", "daemon", "cli",
)

OS_HEADER_NAMES = {
    "aio.h", "arpa/inet.h", "dirent.h", "dlfcn.h", "execinfo.h", "fcntl.h", "ftw.h", "glob.h", "grp.h",
    "ifaddrs.h", "langinfo.h", "link.h", "mqueue.h", "netdb.h", "poll.h", "pthread.h", "pwd.h",
    "sched.h", "semaphore.h", "signal.h", "spawn.h", "strings.h", "sysexits.h", "syslog.h",
    "termios.h", "ucontext.h", "unistd.h", "utime.h", "utmpx.h", "winbase.h", "windows.h", "winreg.h",
    "winsock2.h", "ws2tcpip.h", "io.h", "process.h", "direct.h", "tchar.h", "aclapi.h", "sddl.h",
}
OS_HEADER_DIRECTORIES = ("sys/", "linux/", "asm/", "net/", "netinet/", "bits/")

OS_MACROS = (
    "_WIN32", "_WIN64", "WIN32", "__MINGW32__", "__MINGW64__", "__CYGWIN__", "__linux__", "__linux",
    "__unix__", "__unix", "__APPLE__", "__MACH__", "__FreeBSD__", "__ANDROID__", "_POSIX_VERSION",
)

# Calls of Windows that return nothing.
WITHOUT_RESULT = ("AcquireSRWLockExclusive", "FreeLibraryAndExitThread", "OutputDebugStringA",
                  "ReleaseSRWLockExclusive")

FILE_LENGTH_WARNING = 500
FILE_LENGTH_FAULT = 1000

# Where this repository was made is nobody's business; written in pieces, since this file is checked.
MACHINE_FOLDERS = ("wor" + "k", "far" + "m")
REGISTRY_HOSTS = tuple(
    name + "." + domain
    for name, domain in (
        ("deb", "debian.org"), ("security", "debian.org"), ("snapshot", "debian.org"),
        ("ftp", "debian.org"), ("archive", "ubuntu.com"), ("registry", "npmjs.org"),
        ("registry", "npmjs.com"), ("registry", "yarnpkg.com"), ("pypi", "org"),
        ("files", "pythonhosted.org"), ("proxy", "golang.org"), ("sum", "golang.org"),
        ("index", "crates.io"), ("static", "crates.io"), ("rubygems", "org"),
        ("repo1", "maven.org"), ("conan", "io"), ("registry-1", "docker.io"), ("ghcr", "io"),
    )
)
STANDARD_NAMES = r"PCI|UEFI|DMTF|DSP\d+|CIM|WBEM|RFC|ISO|IEEE|POSIX|SMBIOS|PnP|BIOS Boot|ACPI|TLS|HTTP"

RULES = {
    "os-header": "OS headers stay in the platform folders",
    "os-conditional": "conditionals on the operating system stay in the platform folders",
    "include-direction": "includes follow the layers and start at the project's root",
    "layers": "table, link lines and architecture page say the same of who may include whom",
    "include-circle": "no two units of a folder include each other in a circle",
    "namespace": "a file's namespace says the folder that it stands in",
    "plain-mutex": "mutexes are annotated, so that the compiler sees what they guard",
    "system-call": "what Windows returns is looked at, or dropped on purpose",
    "using-namespace": "no using-directive in a header",
    "catch-all": "catch-alls only at the listed boundaries",
    "sleep-in-test": "tests wait for conditions, never for time",
    "fixture-name": "a fixture that tests share is XFixture in XFixture.h",
    "disabled-code": "code is there or gone, never switched off",
    "file-length": "files stay small",
    "header-guard": "guards are named for the path",
    "test-per-source": "every source has its test",
    "cmake-lists-source": "every source is built",
    "repository-speech": "no machine's paths, registries or private papers in the text",
}

CXX_SUFFIXES = (".h", ".hpp", ".cpp", ".cc", ".cxx")
HEADER_SUFFIXES = (".h", ".hpp")

# shellcheck shell=bash
# What stories share. Sourced by them, inside the guest.

set -euo pipefail
source /run/guest/settings

devices=/sys/bus/pci/devices
firmware=$run/firmware

# fail TEXT...: ends the story.
fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}

# expect_equal WHAT EXPECTED ACTUAL
expect_equal() { [ "$2" = "$3" ] || fail "$1: expected \"$2\", got \"$3\""; }

# expect_text WHAT PART TEXT: the text has that part.
expect_text() { [[ $3 == *"$2"* ]] || fail "$1: expected \"$2\" in \"$3\""; }

# expect_failure STATUS WORDS COMMAND...: the command ends with that status, and says these words.
expect_failure() {
  local expected=$1 words=$2 status=0 answer
  shift 2
  answer=$("$@" 2>&1) || status=$?
  expect_equal "status of $*" "$expected" "$status"
  expect_text "answer of $*" "$words" "$answer"
}

# await COMMAND...: waits until the command succeeds, 10 seconds at the most.
await() {
  local limit=$((SECONDS + 10))
  until "$@"; do
    [ $SECONDS -lt $limit ] || fail "waited in vain for: $*"
    sleep 0.02
  done
}

# ---- the adapters: the lines of tests/guest/hardware.py ----

# Read once, since a process takes its time in here. The words behind the name, by the name.
declare -A adapter_lines=() adapter_kinds=()
adapter_names=()
while read -r kind name line; do
  adapter_names+=("$name")
  adapter_kinds[$name]=$kind
  adapter_lines[$name]=$line
done <"$here/adapters"

# adapters KIND: prints the names of the stock adapters or of the boards.
adapters() {
  local name
  for name in "${adapter_names[@]}"; do
    [ "${adapter_kinds[$name]}" != "$1" ] || echo "$name"
  done
}

# describe NAME: sets, of any adapter, `slot`, `address` (of function 0), `addresses` (an array, of all functions)
# and `driver`; of a stock adapter `rom`, of that `digest` and `rom_device`, and `modules`; of a board `ports` (of each function), `serial`, `undi`
# and `mgmt` (the versions that it comes with).
describe() {
  local functions=1 function
  case ${adapter_kinds[$1]:-} in
    stock) read -r slot driver rom digest rom_device modules <<<"${adapter_lines[$1]}" ;;
    board) read -r slot driver functions ports serial undi mgmt <<<"${adapter_lines[$1]}" ;;
    *) fail "there is no adapter $1" ;;
  esac
  addresses=()
  for ((function = 0; function < functions; function++)); do
    addresses+=("$slot.$function")
  done
  address=${addresses[0]}
}

# ports_of ADDRESS: prints the network devices of a function. Those of virtio have a device between.
ports_of() {
  local port
  for port in "$devices/$1"/net/* "$devices/$1"/virtio*/net/*; do
    [ ! -e "$port" ] || echo "${port##*/}"
  done
}

# port_of ADDRESS: prints the first of them. No `head` does: who writes to it fails when it has enough.
port_of() {
  local ports
  mapfile -t ports <<<"$(ports_of "$1")"
  echo "${ports[0]:-}"
}

# device_of ADDRESS: prints the vendor and the device of a function, as in "8086:10d3".
device_of() {
  local vendor device
  read -r vendor <"$devices/$1/vendor"
  read -r device <"$devices/$1/device"
  echo "${vendor#0x}:${device#0x}"
}

# load MODULE
load() { [ -e "/sys/module/$1" ] || insmod "$modules_folder/$1.ko"; }

load_test_driver() {
  # shellcheck disable=SC2086 # one word for each parameter
  insmod "$test_driver" $driver_parameters
}

# bind NAME: gives all functions of a board to its driver.
bind() {
  local function
  describe "$1"
  for function in "${addresses[@]}"; do
    echo "$driver" >"$devices/$function/driver_override"
    echo "$function" >/sys/bus/pci/drivers_probe
    [ -e "$devices/$function/driver" ] || fail "$1: $driver has not taken $function: $(dmesg | tail -n 5)"
  done
}

# unbind NAME: takes them away from it.
unbind() {
  local function
  describe "$1"
  for function in "${addresses[@]}"; do
    [ ! -e "$devices/$function/driver" ] || echo "$function" >"$devices/$function/driver/unbind"
  done
}

# prepare_machine: loads the modules and binds everything.
prepare_machine() {
  local name module
  mkdir -p /lib/firmware
  ln -s "$firmware" /lib/firmware/guest
  load_test_driver
  # Before the stock modules, which would take the boards, too.
  for name in $(adapters board); do
    bind "$name"
  done
  for name in $(adapters stock); do
    describe "$name"
    for module in $modules; do
      load "$module"
    done
  done
}

# ---- boards ----

# fresh_board NAME: sets a board back to what it comes with, whatever a story before has left, and describes it.
fresh_board() {
  describe "$1"
  [ ! -e "/sys/kernel/debug/testnic/$slot" ] || set_board "$1" pause_at 101
  rm -f /var/lib/orvex/kernel/*.json
  unbind "$1"
  dd if="$flashes/$1.new" of="$flashes/$1.flash" bs=64k conv=notrunc status=none
  bind "$1"
}

# set_board NAME SETTING VALUE: step_ms, fail_at or pause_at; the test driver's source says what they mean.
set_board() {
  describe "$1"
  echo "$3" >"/sys/kernel/debug/testnic/$slot/$2"
}

# is_at NAME PERCENT: whether a write is there.
is_at() {
  describe "$1"
  [ "$(<"/sys/kernel/debug/testnic/$slot/percent")" = "$2" ]
}

# versions_of ADDRESS: prints "running fw.undi 1.0.0" and so on, as devlink tells them.
versions_of() {
  local kind='' first rest
  devlink dev info "pci/$1" | while read -r first rest; do
    case $first in
      *:) kind=${first%:} ;;
      fw.* | board.*) echo "$kind $first $rest" ;;
    esac
  done
}

# expect_versions ADDRESS KIND UNDI MGMT [KIND UNDI MGMT]: KIND is running or stored.
expect_versions() {
  local address=$1 versions
  versions=$'\n'$(versions_of "$1")$'\n'
  shift
  while [ $# -gt 0 ]; do
    expect_text "versions of $address" $'\n'"$1 fw.undi $2"$'\n' "$versions"
    expect_text "versions of $address" $'\n'"$1 fw.mgmt $3"$'\n' "$versions"
    shift 3
  done
}

# flash ADDRESS FILE [ARGUMENT...]: writes a file of tests/guest/firmware.py.
flash() { devlink dev flash "pci/$1" file "guest/$2" "${@:3}"; }

# rom_of ADDRESS SIZE: prints the first bytes of a function's option ROM, as it was when the machine started.
rom_of() {
  echo 1 >"$devices/$1/rom"
  head -c "$2" "$devices/$1/rom"
  echo 0 >"$devices/$1/rom"
}

# expect_rom ADDRESS FILE: the function's option ROM is that file's.
expect_rom() {
  rom_of "$1" "$(stat -c %s "$2")" | cmp - "$2" || fail "the option ROM of $1 is not $2"
}

# expect_undi NAME FILE: the board's flash holds that option ROM.
expect_undi() {
  cmp -n "$(stat -c %s "$2")" "$flashes/$1.flash" "$2" || fail "the flash of $1 does not hold $2"
}

# expect_mgmt NAME FILE: the board's flash holds that management firmware.
expect_mgmt() {
  cmp -n "$(stat -c %s "$2")" "$flashes/$1.flash" "$2" $((448 * 1024 + 256)) ||
    fail "the flash of $1 does not hold $2"
}

# ---- quorvel ----

# expect_told NAME TEXT...: `quorvel adapters` has each text in a line that is about the adapter. The variable
# `adapters_told` stands for what it prints, where that is set.
expect_told() {
  local told text
  describe "$1"
  shift
  # A line without an address is about the adapter of the line before.
  told=$(awk -v slot="$slot" '/^0000:/ { own = index($1, slot) == 1 } /:$/ { own = 1 } own' \
    <<<"${adapters_told:-$(quorvel adapters)}")
  for text in "$@"; do
    expect_text "what quorvel tells of $slot" "$text" "$told"
  done
}

# expect_tidy: no firmware is staged for the kernel, and the journal has no entry.
expect_tidy() {
  local left journal=/var/lib/orvex/kernel
  [ -d $journal ] || journal=''
  # shellcheck disable=SC2086 # none where there is no journal
  left=$(find /lib/firmware $journal -name 'quorvel-*' -o -name '*.json')
  expect_equal "what is left" "" "$left"
}

# start_service: serves the agents on the loopback interface until the story's end; `service` is the process.
start_service() {
  ip link set lo up
  (
    umask 077
    echo "${login%:*}:$(mkpasswd -m sha512 "${login#*:}"):operator" >/run/users
    printf '%s\n' "listen = $service_address" "authentication = file" "password-file = /run/users" >/run/quorveld.conf
  )
  : >/run/quorveld.log
  ZOLAN_Quorvel_LOG_LEVEL=3 quorveld --config /run/quorveld.conf >>/run/quorveld.log 2>&1 &
  service=$!
  trap 'kill -9 "$service" 2>/dev/null || true' EXIT
  await grep -qs "quorveld: serving" /run/quorveld.log
}

login=admin:secret
service_address=127.0.0.1:5988
keys='SystemCreationClassName="CIM_UnitaryComputerSystem",SystemName="localhost"'

# ask_service OPERATION OBJECT [ARGUMENT...]: prints what a client is answered.
ask_service() { wbemcli -nl "$1" "http://$login@$service_address/root/DCIM/zolan:$2" "${@:3}"; }

# install PORT FILE: has the service install a file, and prints the job's name.
install_by_service() {
  ask_service cm \
    "Orvex_SoftwareInstallationService.$keys,CreationClassName=\"Orvex_SoftwareInstallationService\",Name=\"Orvex:FirmwareUpdate\"" \
    "InstallFromURI.URI=\"file://$2\",Target=Orvex_EthernetPort.$keys,CreationClassName=\"Orvex_EthernetPort\",DeviceID=\"$1\",InstallOptions=5,InstallOptionsValues=\"\"" |
    grep -o 'Orvex_ConcreteJob.*'
}

# job_has JOB LINE: whether the job has that property, as in "JobState=7".
job_has() { [[ $'\n'$(ask_service gi "$1")$'\n' == *$'\n'"-$2"$'\n'* ]]; }

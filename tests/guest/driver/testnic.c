// SPDX-License-Identifier: GPL-2.0
/*
 * An Ethernet adapter for tests whose firmware can be updated, as the drivers of real ones offer it. It sends
 * and receives nothing.
 *
 * It takes any PCI function that is given to it by driver_override; that function keeps its class, its ids and
 * its option ROM. The functions of a slot are one board with one flash, which is BAR 2 of the function of that
 * slot that is an ivshmem device: a file on the host, so that what is written there stays, and can be the
 * option ROM that the board has after the machine's next start. A board has two components:
 *
 *   fw.undi  identifier 5: a chain of option ROM images, from the flash's first byte
 *   fw.mgmt  identifier 6: anything, behind the record
 *
 * The record between them (struct testnic_record) says who the board is and which versions its components
 * have; whoever makes the file writes it. What runs is what the flash held when the first function of the
 * board was bound, or at the last activation.
 *
 * It is several drivers: some have devlink, and some know ETHTOOL_FLASHDEV alone. Their names are parameters,
 * since users decide by a driver's name what they may send to it.
 *
 * In the folder testnic/SLOT of debugfs, for each board:
 *   step_ms   what each of the 20 steps of a write takes; 0 for no time at all
 *   fail_at   at how many percent of a component a write fails; 101 for never
 *   pause_at  at how many percent it waits until this is raised, for 20 seconds at the most; 101 for never
 *   percent   where the write is that runs; 101 when none does
 */
#include <linux/debugfs.h>
#include <linux/delay.h>
#include <linux/etherdevice.h>
#include <linux/ethtool.h>
#include <linux/firmware.h>
#include <linux/io.h>
#include <linux/jiffies.h>
#include <linux/list.h>
#include <linux/module.h>
#include <linux/mutex.h>
#include <linux/pci.h>
#include <linux/pldmfw.h>
#include <linux/rtnetlink.h>
#include <linux/slab.h>
#include <linux/spinlock.h>
#include <net/devlink.h>

#define TESTNIC_MAGIC		"TESTNIC1"
#define TESTNIC_TAIL		(64 * 1024)	/* the record and fw.mgmt, at the flash's end */
#define TESTNIC_RECORD_ROOM	256
#define TESTNIC_TEXT		32
#define TESTNIC_MAX_PORTS	2
#define TESTNIC_STEPS		20
#define TESTNIC_NEVER		101		/* percent */
#define TESTNIC_LONGEST_PAUSE	(20 * HZ)
#define TESTNIC_MGMT_MAGIC	"MGMT"		/* what a file for fw.mgmt alone begins with */

#define TESTNIC_MAX_DRIVERS	4	/* of each kind */

static char *devlink_drivers[TESTNIC_MAX_DRIVERS] = { "testnic" };
static int devlink_driver_count = 1;
module_param_array(devlink_drivers, charp, &devlink_driver_count, 0444);
MODULE_PARM_DESC(devlink_drivers, "names of the drivers that have devlink");

static char *ethtool_drivers[TESTNIC_MAX_DRIVERS] = { "testnic_ethtool" };
static int ethtool_driver_count = 1;
module_param_array(ethtool_drivers, charp, &ethtool_driver_count, 0444);
MODULE_PARM_DESC(ethtool_drivers, "names of the drivers that have ETHTOOL_FLASHDEV alone");

static uint step_ms;
module_param(step_ms, uint, 0644);
MODULE_PARM_DESC(step_ms, "what a step of a write takes, for boards that are bound from now on");

static uint fail_at = TESTNIC_NEVER;
module_param(fail_at, uint, 0644);
MODULE_PARM_DESC(fail_at, "at how many percent a write fails, for boards that are bound from now on");

enum testnic_component { TESTNIC_UNDI, TESTNIC_MGMT, TESTNIC_COMPONENTS };

static const struct {
	const char *name;
	u16 identifier;
} testnic_components[TESTNIC_COMPONENTS] = {
	[TESTNIC_UNDI] = { "fw.undi", 5 },
	[TESTNIC_MGMT] = { "fw.mgmt", 6 },
};

/* What the flash's tail begins with. Texts are padded with zeros. */
struct testnic_record {
	char magic[8];
	char version[TESTNIC_COMPONENTS][TESTNIC_TEXT];
	char serial[TESTNIC_TEXT];
	char part[TESTNIC_TEXT];
	char product[TESTNIC_TEXT];
	__le32 ports;		/* of each function */
};

struct testnic_board {
	struct list_head list;
	unsigned int users;	/* functions that are bound; guarded by testnic_boards_lock */
	int domain;
	unsigned int bus, slot;
	struct pci_dev *flash_dev;
	u8 *flash;
	size_t size;
	struct mutex writing;	/* who writes or activates */
	spinlock_t versions;	/* guards the versions in the record, and running */
	char running[TESTNIC_COMPONENTS][TESTNIC_TEXT];
	u8 vpd[160];	/* five texts of 31 bytes, and what stands round them */
	size_t vpd_size;
	u32 step_ms, fail_at, pause_at, percent;
	struct dentry *debugfs;
};

static LIST_HEAD(testnic_boards);
static DEFINE_MUTEX(testnic_boards_lock);
static struct dentry *testnic_debugfs;

struct testnic;

/* A port; the private data of its net_device. */
struct testnic_port {
	struct testnic *nic;
	struct net_device *netdev;
	struct devlink_port devlink_port;
};

/* A function; the private data of its devlink where it has that. */
struct testnic {
	struct pci_dev *pdev;
	struct testnic_board *board;
	struct devlink *devlink;	/* NULL where the driver has none */
	unsigned int port_count;
	struct testnic_port *ports[TESTNIC_MAX_PORTS];
};

/* An update that runs; devlink and extack are NULL where ethtool asked for it. */
struct testnic_update {
	struct pldmfw pldm;
	struct testnic_board *board;
	struct devlink *devlink;
	struct netlink_ext_ack *extack;
	const char *only;	/* a component's name; NULL means all */
	bool explained;
};

/* ---- the flash ---- */

static struct testnic_record *testnic_record(struct testnic_board *board)
{
	return (struct testnic_record *)(board->flash + board->size - TESTNIC_TAIL);
}

static u8 *testnic_region(struct testnic_board *board, enum testnic_component component, size_t *room)
{
	if (component == TESTNIC_UNDI) {
		*room = board->size - TESTNIC_TAIL;
		return board->flash;
	}
	*room = TESTNIC_TAIL - TESTNIC_RECORD_ROOM;
	return (u8 *)testnic_record(board) + TESTNIC_RECORD_ROOM;
}

static void testnic_get_text(char *text, const char *stored)
{
	memcpy(text, stored, TESTNIC_TEXT);
	text[TESTNIC_TEXT - 1] = '\0';
}

static void testnic_get_versions(struct testnic_board *board, enum testnic_component component,
				 char *running, char *stored)
{
	spin_lock(&board->versions);
	testnic_get_text(running, board->running[component]);
	testnic_get_text(stored, testnic_record(board)->version[component]);
	spin_unlock(&board->versions);
}

static void testnic_set_version(struct testnic_board *board, enum testnic_component component,
				const char *version)
{
	char text[TESTNIC_TEXT] = "";

	strscpy(text, version, sizeof(text));
	spin_lock(&board->versions);
	memcpy(testnic_record(board)->version[component], text, sizeof(text));
	spin_unlock(&board->versions);
}

static void testnic_activate(struct testnic_board *board)
{
	int i;

	spin_lock(&board->versions);
	for (i = 0; i < TESTNIC_COMPONENTS; i++)
		testnic_get_text(board->running[i], testnic_record(board)->version[i]);
	spin_unlock(&board->versions);
}

static void testnic_notify(struct testnic_update *update, const char *text,
			   enum testnic_component component, size_t done, size_t total)
{
	if (update->devlink)
		devlink_flash_update_status_notify(update->devlink, text,
						   testnic_components[component].name, done, total);
}

#define TESTNIC_EXPLAIN(update, text) do {			\
	NL_SET_ERR_MSG_MOD((update)->extack, text);		\
	(update)->explained = true;				\
} while (0)

/* Lets a step of the write pass, at the pace that debugfs says. */
static void testnic_step(struct testnic_board *board, unsigned int percent)
{
	unsigned long end = jiffies + TESTNIC_LONGEST_PAUSE;

	WRITE_ONCE(board->percent, percent);
	while (percent >= READ_ONCE(board->pause_at)) {
		if (time_after_eq(jiffies, end))
			WRITE_ONCE(board->pause_at, TESTNIC_NEVER);
		msleep(10);
	}
	if (READ_ONCE(board->step_ms))
		msleep(READ_ONCE(board->step_ms));
}

static int testnic_write_steps(struct testnic_update *update, enum testnic_component component, u8 *to,
			       const u8 *data, size_t size)
{
	struct testnic_board *board = update->board;
	size_t done = 0;
	int step;

	for (step = 0; step < TESTNIC_STEPS; step++) {
		unsigned int percent = step * 100 / TESTNIC_STEPS;
		size_t end = size * (step + 1) / TESTNIC_STEPS;

		testnic_notify(update, "Flashing", component, done, size);
		testnic_step(board, percent);
		if (percent >= READ_ONCE(board->fail_at)) {
			testnic_notify(update, "Flashing failed", component, done, size);
			TESTNIC_EXPLAIN(update, "flash write failed");
			return -EIO;
		}
		memcpy(to + done, data + done, end - done);
		done = end;
	}
	testnic_notify(update, "Flashing", component, size, size);
	return 0;
}

static int testnic_write(struct testnic_update *update, enum testnic_component component, const u8 *data,
			 size_t size, const char *version)
{
	size_t room;
	u8 *to = testnic_region(update->board, component, &room);
	int err;

	if (size > room) {
		TESTNIC_EXPLAIN(update, "component is larger than its region of the flash");
		return -EFBIG;
	}
	if (update->devlink)
		devlink_flash_update_timeout_notify(update->devlink, "Erasing",
						    testnic_components[component].name, 5);
	testnic_set_version(update->board, component, "");
	memset(to, 0xff, room);
	err = testnic_write_steps(update, component, to, data, size);
	WRITE_ONCE(update->board->percent, TESTNIC_NEVER);
	if (err)
		return err;
	testnic_set_version(update->board, component, version);
	testnic_notify(update, "Flashing done", component, 0, 0);
	return 0;
}

/* ---- files ---- */

static int testnic_find_component(u16 identifier)
{
	int i;

	for (i = 0; i < TESTNIC_COMPONENTS; i++)
		if (testnic_components[i].identifier == identifier)
			return i;
	return -EINVAL;
}

static int testnic_send_package_data(struct pldmfw *context, const u8 *data, u16 length)
{
	return 0;
}

static int testnic_send_component_table(struct pldmfw *context, struct pldmfw_component *component,
					u8 transfer_flag)
{
	struct testnic_update *update = container_of(context, struct testnic_update, pldm);

	if (testnic_find_component(component->identifier) >= 0)
		return 0;
	TESTNIC_EXPLAIN(update, "package has a component that this device does not know");
	return -EINVAL;
}

static int testnic_flash_component(struct pldmfw *context, struct pldmfw_component *component)
{
	struct testnic_update *update = container_of(context, struct testnic_update, pldm);
	int i = testnic_find_component(component->identifier);
	char version[TESTNIC_TEXT] = "";

	if (update->only && strcmp(update->only, testnic_components[i].name))
		return 0;
	memcpy(version, component->version_string,
	       min_t(size_t, component->version_len, sizeof(version) - 1));
	return testnic_write(update, i, component->component_data, component->component_size, version);
}

static const struct pldmfw_ops testnic_pldm_ops = {
	.match_record = pldmfw_op_pci_match_record,
	.send_package_data = testnic_send_package_data,
	.send_component_table = testnic_send_component_table,
	.flash_component = testnic_flash_component,
};

static bool testnic_begins_with(const struct firmware *fw, const char *magic, size_t size)
{
	return fw->size >= size && !memcmp(fw->data, magic, size);
}

static int testnic_write_file(struct testnic_update *update, const struct firmware *fw)
{
	bool undi = !update->only || !strcmp(update->only, testnic_components[TESTNIC_UNDI].name);
	bool mgmt = update->only && !strcmp(update->only, testnic_components[TESTNIC_MGMT].name);
	int err;

	if (undi && testnic_begins_with(fw, "\x55\xaa", 2))
		return testnic_write(update, TESTNIC_UNDI, fw->data, fw->size, "raw");
	if (mgmt && testnic_begins_with(fw, TESTNIC_MGMT_MAGIC, sizeof(TESTNIC_MGMT_MAGIC) - 1))
		return testnic_write(update, TESTNIC_MGMT, fw->data, fw->size, "raw");
	err = pldmfw_flash_image(&update->pldm, fw);
	if (!err || update->explained)
		return err;
	if (err == -ENOENT)
		NL_SET_ERR_MSG_MOD(update->extack, "package is not for this device");
	else
		NL_SET_ERR_MSG_MOD(update->extack, "file is no valid package");
	return err;
}

static int testnic_update_from(struct testnic *nic, const struct firmware *fw, const char *only,
			       struct netlink_ext_ack *extack)
{
	struct testnic_update update = {
		.pldm = { .ops = &testnic_pldm_ops, .dev = &nic->pdev->dev },
		.board = nic->board,
		.devlink = nic->devlink,
		.extack = extack,
		.only = only,
	};
	int err;

	if (!mutex_trylock(&nic->board->writing)) {
		NL_SET_ERR_MSG_MOD(extack, "another function of the board is writing the flash");
		return -EBUSY;
	}
	err = testnic_write_file(&update, fw);
	mutex_unlock(&nic->board->writing);
	return err;
}

/* ---- ports ---- */

static netdev_tx_t testnic_xmit(struct sk_buff *skb, struct net_device *netdev)
{
	dev_kfree_skb(skb);
	return NETDEV_TX_OK;
}

static struct devlink_port *testnic_get_devlink_port(struct net_device *netdev)
{
	struct testnic_port *port = netdev_priv(netdev);

	return &port->devlink_port;
}

static const struct net_device_ops testnic_netdev_ops = {
	.ndo_start_xmit = testnic_xmit,
	.ndo_get_devlink_port = testnic_get_devlink_port,
};

static const struct net_device_ops testnic_ethtool_netdev_ops = {
	.ndo_start_xmit = testnic_xmit,
};

static const struct ethtool_ops testnic_ethtool_ops = {
	.get_link = ethtool_op_get_link,
};

static void testnic_get_drvinfo(struct net_device *netdev, struct ethtool_drvinfo *info)
{
	struct testnic_port *port = netdev_priv(netdev);
	char running[TESTNIC_TEXT], stored[TESTNIC_TEXT];

	strscpy(info->driver, dev_driver_string(&port->nic->pdev->dev), sizeof(info->driver));
	strscpy(info->bus_info, pci_name(port->nic->pdev), sizeof(info->bus_info));
	testnic_get_versions(port->nic->board, TESTNIC_MGMT, running, stored);
	strscpy(info->fw_version, running, sizeof(info->fw_version));
}

/* Whoever writes waits for itself alone in devlink; here the host's whole network configuration waits. */
static int testnic_flash_device(struct net_device *netdev, struct ethtool_flash *request)
{
	struct testnic_port *port = netdev_priv(netdev);
	const struct firmware *fw;
	int err;

	ASSERT_RTNL();
	request->data[sizeof(request->data) - 1] = '\0';
	err = request_firmware(&fw, request->data, &port->nic->pdev->dev);
	if (err)
		return err;
	err = testnic_update_from(port->nic, fw, NULL, NULL);
	release_firmware(fw);
	return err;
}

static const struct ethtool_ops testnic_flashing_ethtool_ops = {
	.get_link = ethtool_op_get_link,
	.get_drvinfo = testnic_get_drvinfo,
	.flash_device = testnic_flash_device,
};

static int testnic_add_port(struct testnic *nic, unsigned int index)
{
	struct devlink_port_attrs attrs = { .flavour = DEVLINK_PORT_FLAVOUR_PHYSICAL };
	const u8 address[ETH_ALEN] = {
		0x02, 0x54, nic->pdev->bus->number, PCI_SLOT(nic->pdev->devfn), PCI_FUNC(nic->pdev->devfn), index
	};
	struct net_device *netdev = alloc_etherdev(sizeof(struct testnic_port));
	struct testnic_port *port;
	int err;

	if (!netdev)
		return -ENOMEM;
	port = netdev_priv(netdev);
	port->nic = nic;
	port->netdev = netdev;
	SET_NETDEV_DEV(netdev, &nic->pdev->dev);
	netdev->dev_port = index;
	netdev->netdev_ops = nic->devlink ? &testnic_netdev_ops : &testnic_ethtool_netdev_ops;
	netdev->ethtool_ops = nic->devlink ? &testnic_ethtool_ops : &testnic_flashing_ethtool_ops;
	eth_hw_addr_set(netdev, address);
	if (nic->devlink) {
		attrs.phys.port_number = index;
		devlink_port_attrs_set(&port->devlink_port, &attrs);
		err = devl_port_register(nic->devlink, &port->devlink_port, index);
		if (err)
			goto err_netdev;
	}
	err = register_netdev(netdev);
	if (err)
		goto err_port;
	if (nic->devlink)
		devlink_port_type_eth_set(&port->devlink_port, netdev);
	nic->ports[index] = port;
	return 0;

err_port:
	if (nic->devlink)
		devl_port_unregister(&port->devlink_port);
err_netdev:
	free_netdev(netdev);
	return err;
}

static void testnic_remove_ports(struct testnic *nic)
{
	unsigned int i;

	for (i = 0; i < nic->port_count; i++) {
		struct testnic_port *port = nic->ports[i];

		if (!port)
			continue;
		nic->ports[i] = NULL;
		if (nic->devlink)
			devlink_port_type_clear(&port->devlink_port);
		unregister_netdev(port->netdev);
		if (nic->devlink)
			devl_port_unregister(&port->devlink_port);
		free_netdev(port->netdev);
	}
}

/* Where the driver has devlink, its lock is held. */
static int testnic_add_ports(struct testnic *nic)
{
	unsigned int i;

	for (i = 0; i < nic->port_count; i++) {
		int err = testnic_add_port(nic, i);

		if (err) {
			testnic_remove_ports(nic);
			return err;
		}
	}
	return 0;
}

/* ---- devlink ---- */

static int testnic_info_get(struct devlink *devlink, struct devlink_info_req *req,
			    struct netlink_ext_ack *extack)
{
	struct testnic *nic = devlink_priv(devlink);
	char text[TESTNIC_TEXT], running[TESTNIC_TEXT], stored[TESTNIC_TEXT];
	int i, err;

	err = devlink_info_driver_name_put(req, dev_driver_string(&nic->pdev->dev));
	if (err)
		return err;
	testnic_get_text(text, testnic_record(nic->board)->serial);
	err = devlink_info_serial_number_put(req, text);
	if (err)
		return err;
	testnic_get_text(text, testnic_record(nic->board)->part);
	err = devlink_info_version_fixed_put(req, DEVLINK_INFO_VERSION_GENERIC_BOARD_ID, text);
	for (i = 0; i < TESTNIC_COMPONENTS && !err; i++) {
		const char *name = testnic_components[i].name;

		testnic_get_versions(nic->board, i, running, stored);
		err = devlink_info_version_running_put_ext(req, name, running,
							   DEVLINK_INFO_VERSION_TYPE_COMPONENT);
		if (!err)
			err = devlink_info_version_stored_put_ext(req, name, stored,
								  DEVLINK_INFO_VERSION_TYPE_COMPONENT);
	}
	return err;
}

static int testnic_flash_update(struct devlink *devlink, struct devlink_flash_update_params *params,
				struct netlink_ext_ack *extack)
{
	struct testnic *nic = devlink_priv(devlink);

	devlink_flash_update_status_notify(devlink, "Preparing to flash", NULL, 0, 0);
	return testnic_update_from(nic, params->fw, params->component, extack);
}

static int testnic_reload_down(struct devlink *devlink, bool netns_change,
			       enum devlink_reload_action action, enum devlink_reload_limit limit,
			       struct netlink_ext_ack *extack)
{
	struct testnic *nic = devlink_priv(devlink);

	if (!mutex_trylock(&nic->board->writing)) {
		NL_SET_ERR_MSG_MOD(extack, "another function of the board is writing the flash");
		return -EBUSY;
	}
	testnic_remove_ports(nic);
	if (action == DEVLINK_RELOAD_ACTION_FW_ACTIVATE)
		testnic_activate(nic->board);
	mutex_unlock(&nic->board->writing);
	return 0;
}

static int testnic_reload_up(struct devlink *devlink, enum devlink_reload_action action,
			     enum devlink_reload_limit limit, u32 *actions_performed,
			     struct netlink_ext_ack *extack)
{
	*actions_performed = BIT(DEVLINK_RELOAD_ACTION_DRIVER_REINIT);
	if (action == DEVLINK_RELOAD_ACTION_FW_ACTIVATE)
		*actions_performed |= BIT(DEVLINK_RELOAD_ACTION_FW_ACTIVATE);
	return testnic_add_ports(devlink_priv(devlink));
}

static const struct devlink_ops testnic_devlink_ops = {
	.info_get = testnic_info_get,
	.flash_update = testnic_flash_update,
	.reload_actions = BIT(DEVLINK_RELOAD_ACTION_DRIVER_REINIT) | BIT(DEVLINK_RELOAD_ACTION_FW_ACTIVATE),
	.reload_down = testnic_reload_down,
	.reload_up = testnic_reload_up,
};

/* ---- vital product data ---- */

static u8 *testnic_put_text(u8 *to, const char *stored)
{
	char text[TESTNIC_TEXT];

	testnic_get_text(text, stored);
	memcpy(to, text, strlen(text));
	return to + strlen(text);
}

static u8 *testnic_put_field(u8 *to, const char *keyword, const char *stored)
{
	u8 *end = testnic_put_text(to + 3, stored);

	memcpy(to, keyword, 2);
	to[2] = end - to - 3;
	return end;
}

/* Makes what a board's VPD says of what its record says, as PCI 2.2 lays it out. */
static void testnic_make_vpd(struct testnic_board *board)
{
	struct testnic_record *record = testnic_record(board);
	u8 *end, *fields, *p, sum = 0;

	board->vpd[0] = 0x82;
	end = testnic_put_text(board->vpd + 3, record->product);
	board->vpd[1] = end - board->vpd - 3;
	fields = end;
	fields[0] = 0x90;
	end = testnic_put_field(fields + 3, "PN", record->part);
	end = testnic_put_field(end, "SN", record->serial);
	end = testnic_put_field(end, "V0", record->version[TESTNIC_MGMT]);
	memcpy(end, "RV\x01", 3);
	end += 3;
	fields[1] = end + 1 - fields - 3;
	for (p = board->vpd; p < end; p++)
		sum += *p;
	*end++ = -sum;
	*end++ = 0x78;
	board->vpd_size = end - board->vpd;
}

static ssize_t vpd_read(struct file *file, struct kobject *kobj, struct bin_attribute *attr, char *buf,
			loff_t off, size_t count)
{
	struct testnic *nic = dev_get_drvdata(kobj_to_dev(kobj));

	return memory_read_from_buffer(buf, count, &off, nic->board->vpd, nic->board->vpd_size);
}

/* The PCI core has this file for functions with that capability alone: the name is free here. */
static BIN_ATTR_ADMIN_RO(vpd, 0);

static struct bin_attribute *testnic_bin_attrs[] = { &bin_attr_vpd, NULL };

static const struct attribute_group testnic_group = { .bin_attrs = testnic_bin_attrs };

static const struct attribute_group *testnic_groups[] = { &testnic_group, NULL };

/* ---- boards ---- */

static struct pci_dev *testnic_find_flash(struct pci_dev *pdev)
{
	unsigned int function;

	for (function = 0; function < 8; function++) {
		struct pci_dev *found = pci_get_slot(pdev->bus, PCI_DEVFN(PCI_SLOT(pdev->devfn), function));

		if (found && found->vendor == PCI_VENDOR_ID_REDHAT_QUMRANET && found->device == 0x1110)
			return found;
		pci_dev_put(found);
	}
	return NULL;
}

static int testnic_open_flash(struct testnic_board *board, struct pci_dev *pdev)
{
	int err;

	board->flash_dev = testnic_find_flash(pdev);
	if (!board->flash_dev)
		return dev_err_probe(&pdev->dev, -ENODEV, "no function of this slot is an ivshmem device\n");
	err = pci_enable_device(board->flash_dev);
	if (err) {
		dev_err(&pdev->dev, "the ivshmem device cannot be enabled: %d\n", err);
		goto err_put;
	}
	board->size = pci_resource_len(board->flash_dev, 2);
	if (board->size <= TESTNIC_TAIL) {
		err = dev_err_probe(&pdev->dev, -EINVAL, "the flash has %zu bytes, too few\n", board->size);
		goto err_disable;
	}
	board->flash = memremap(pci_resource_start(board->flash_dev, 2), board->size, MEMREMAP_WB);
	if (!board->flash) {
		err = -ENOMEM;
		goto err_disable;
	}
	if (memcmp(testnic_record(board)->magic, TESTNIC_MAGIC, sizeof(TESTNIC_MAGIC) - 1)) {
		err = dev_err_probe(&pdev->dev, -EINVAL, "the flash has no record of a board\n");
		goto err_unmap;
	}
	return 0;

err_unmap:
	memunmap(board->flash);
err_disable:
	pci_disable_device(board->flash_dev);
err_put:
	pci_dev_put(board->flash_dev);
	return err;
}

static void testnic_close_flash(struct testnic_board *board)
{
	memunmap(board->flash);
	pci_disable_device(board->flash_dev);
	pci_dev_put(board->flash_dev);
}

static void testnic_add_debugfs(struct testnic_board *board)
{
	char name[16];

	snprintf(name, sizeof(name), "%04x:%02x:%02x", board->domain, board->bus, board->slot);
	board->debugfs = debugfs_create_dir(name, testnic_debugfs);
	debugfs_create_u32("step_ms", 0644, board->debugfs, &board->step_ms);
	debugfs_create_u32("fail_at", 0644, board->debugfs, &board->fail_at);
	debugfs_create_u32("pause_at", 0644, board->debugfs, &board->pause_at);
	debugfs_create_u32("percent", 0444, board->debugfs, &board->percent);
}

static struct testnic_board *testnic_new_board(struct pci_dev *pdev)
{
	struct testnic_board *board = kzalloc(sizeof(*board), GFP_KERNEL);
	int err;

	BUILD_BUG_ON(sizeof(struct testnic_record) > TESTNIC_RECORD_ROOM);
	if (!board)
		return ERR_PTR(-ENOMEM);
	board->domain = pci_domain_nr(pdev->bus);
	board->bus = pdev->bus->number;
	board->slot = PCI_SLOT(pdev->devfn);
	mutex_init(&board->writing);
	spin_lock_init(&board->versions);
	board->step_ms = step_ms;
	board->fail_at = fail_at;
	board->pause_at = TESTNIC_NEVER;
	board->percent = TESTNIC_NEVER;
	err = testnic_open_flash(board, pdev);
	if (err) {
		kfree(board);
		return ERR_PTR(err);
	}
	testnic_activate(board);
	testnic_make_vpd(board);
	testnic_add_debugfs(board);
	list_add(&board->list, &testnic_boards);
	return board;
}

static struct testnic_board *testnic_get_board(struct pci_dev *pdev)
{
	struct testnic_board *board;

	mutex_lock(&testnic_boards_lock);
	list_for_each_entry(board, &testnic_boards, list)
		if (board->domain == pci_domain_nr(pdev->bus) && board->bus == pdev->bus->number &&
		    board->slot == PCI_SLOT(pdev->devfn))
			goto found;
	board = testnic_new_board(pdev);
found:
	if (!IS_ERR(board))
		board->users++;
	mutex_unlock(&testnic_boards_lock);
	return board;
}

static void testnic_put_board(struct testnic_board *board)
{
	mutex_lock(&testnic_boards_lock);
	if (!--board->users) {
		list_del(&board->list);
		debugfs_remove_recursive(board->debugfs);
		testnic_close_flash(board);
		kfree(board);
	}
	mutex_unlock(&testnic_boards_lock);
}

static int testnic_init(struct testnic *nic, struct pci_dev *pdev)
{
	nic->pdev = pdev;
	nic->board = testnic_get_board(pdev);
	if (IS_ERR(nic->board))
		return PTR_ERR(nic->board);
	nic->port_count = clamp_t(u32, le32_to_cpu(testnic_record(nic->board)->ports), 1, TESTNIC_MAX_PORTS);
	pci_set_drvdata(pdev, nic);
	return 0;
}

/* ---- drivers that have devlink ---- */

static int testnic_probe(struct pci_dev *pdev, const struct pci_device_id *id)
{
	struct devlink *devlink = devlink_alloc(&testnic_devlink_ops, sizeof(struct testnic), &pdev->dev);
	struct testnic *nic;
	int err;

	if (!devlink)
		return -ENOMEM;
	nic = devlink_priv(devlink);
	nic->devlink = devlink;
	err = testnic_init(nic, pdev);
	if (err)
		goto err_free;
	devlink_set_features(devlink, DEVLINK_F_RELOAD);
	devl_lock(devlink);
	err = testnic_add_ports(nic);
	devl_unlock(devlink);
	if (err)
		goto err_board;
	devlink_register(devlink);
	return 0;

err_board:
	testnic_put_board(nic->board);
err_free:
	devlink_free(devlink);
	return err;
}

static void testnic_remove(struct pci_dev *pdev)
{
	struct testnic *nic = pci_get_drvdata(pdev);
	struct devlink *devlink = nic->devlink;

	devlink_unregister(devlink);
	devl_lock(devlink);
	testnic_remove_ports(nic);
	devl_unlock(devlink);
	testnic_put_board(nic->board);
	devlink_free(devlink);
}

/* ---- drivers that have none ---- */

static int testnic_ethtool_probe(struct pci_dev *pdev, const struct pci_device_id *id)
{
	struct testnic *nic = kzalloc(sizeof(*nic), GFP_KERNEL);
	int err;

	if (!nic)
		return -ENOMEM;
	err = testnic_init(nic, pdev);
	if (err)
		goto err_free;
	err = testnic_add_ports(nic);
	if (err)
		goto err_board;
	return 0;

err_board:
	testnic_put_board(nic->board);
err_free:
	kfree(nic);
	return err;
}

static void testnic_ethtool_remove(struct pci_dev *pdev)
{
	struct testnic *nic = pci_get_drvdata(pdev);

	testnic_remove_ports(nic);
	testnic_put_board(nic->board);
	kfree(nic);
}

/* ---- the module ---- */

static struct pci_driver testnic_drivers[2 * TESTNIC_MAX_DRIVERS];
static int testnic_driver_count;

static void testnic_remove_drivers(void)
{
	while (testnic_driver_count > 0)
		pci_unregister_driver(&testnic_drivers[--testnic_driver_count]);
	debugfs_remove_recursive(testnic_debugfs);
}

static int __init testnic_add_driver(const char *name, bool has_devlink)
{
	struct pci_driver *driver = &testnic_drivers[testnic_driver_count];
	int err;

	driver->name = name;
	driver->probe = has_devlink ? testnic_probe : testnic_ethtool_probe;
	driver->remove = has_devlink ? testnic_remove : testnic_ethtool_remove;
	driver->dev_groups = testnic_groups;
	err = pci_register_driver(driver);
	if (!err)
		testnic_driver_count++;
	return err;
}

static int __init testnic_module_init(void)
{
	int i, err = 0;

	testnic_debugfs = debugfs_create_dir("testnic", NULL);
	for (i = 0; i < devlink_driver_count && !err; i++)
		err = testnic_add_driver(devlink_drivers[i], true);
	for (i = 0; i < ethtool_driver_count && !err; i++)
		err = testnic_add_driver(ethtool_drivers[i], false);
	if (err)
		testnic_remove_drivers();
	return err;
}
module_init(testnic_module_init);

static void __exit testnic_module_exit(void)
{
	testnic_remove_drivers();
}
module_exit(testnic_module_exit);

MODULE_LICENSE("GPL");
MODULE_DESCRIPTION("Ethernet adapter for tests, whose firmware can be updated");

/* A store owner: writes two settings into the data block and commits them as one queued message.
 *
 *     cc -std=c11 owner.c -o owner $(pkg-config --cflags --libs apconf)
 */
#define _POSIX_C_SOURCE 200809L
#include <apconf/apconf.h>
#include <stdio.h>
#include <string.h>

int main(void)
{
    register_root_cmd(lib_pkg_root);
    init_cmd_tree_data();

    /* Texts are heap copies, and the block's from now on. Other values have the form of their ptype. */
    root.config.hostname_cmd.hostname = strdup("lobby");
    string2ptype_value(PTYPE_CHANNEL, &root.config.radio[1].channel_cmd.channel, "44");

    if (init_cmclient(NULL, "owner") < 0) fprintf(stderr, "no server yet: the message waits in the queue\n");
    apply_cmd_tree_data();
    deinit_cmclient();

    const int number = apconf_committed_index();
    if (number < 0) {
        fprintf(stderr, "the message could not be queued; the system log says why\n");
        return 1;
    }
    printf("message %d\n", number);
    return 0;
}

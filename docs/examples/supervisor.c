/*
 * A whole supervisor in little: takes the panel's link and shows one file playing.
 *
 * Usage: supervisor ADDRESS FILE [SECONDS]
 * Build: cc -o supervisor supervisor.c
 */
#define _XOPEN_SOURCE 700
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

enum { PORT = 5000, HEADER = 4, LONGEST_DATA = 4096 };
enum { FILENAME = 1, TIME, MODE, LEVEL, KEY, DISK_STAT, DEVICE, DISK_INFO = 10, REQUEST = 13 };
enum { KEY_STOP = 0x01, DISK_NORMAL = 1, USB = 0x01, PLAY_ALL = 0x01, ASK_MODE = 8 };
enum { SOON_MS = 500 };   /* a panel at rest answers many times over within this */
enum { BUSY_MS = 35000 }; /* while it restarts the network it answers nobody for up to 30 s */
enum { UNHEARD = 4096 };  /* bytes that may be under way without an answer */

static int panel;
static size_t unheard;

static void fail(const char *reason)
{
    fprintf(stderr, "supervisor: %s\n", reason);
    exit(1);
}

/* Returns 0 when the time ran out, 1 when the bytes are there. */
static int read_bytes(uint8_t *into, size_t size, int timeout_ms)
{
    while (size > 0) {
        struct pollfd ready = {.fd = panel, .events = POLLIN};
        if (poll(&ready, 1, timeout_ms) <= 0)
            return 0;
        ssize_t got = read(panel, into, size);
        if (got <= 0)
            fail("the panel has gone");
        into += got;
        size -= (size_t)got;
    }
    return 1;
}

/* The code in the next mode report, -1 when the time ran out. */
static int report(int timeout_ms)
{
    static uint8_t data[0x10000];
    uint8_t header[HEADER];
    while (read_bytes(header, HEADER, timeout_ms)) {
        size_t length = header[2] | (size_t)header[3] << 8;
        if (!read_bytes(data, length, BUSY_MS))
            return -1;
        if (header[0] == REQUEST && header[1] == 0 && length == 1)
            return data[0];
    }
    return -1;
}

static void put16(uint8_t *into, uint16_t number)
{
    into[0] = (uint8_t)(number & 0xFF);
    into[1] = (uint8_t)(number >> 8);
}

/* One packet, one write. */
static void write_packet(uint16_t command, const void *data, size_t length)
{
    uint8_t packet[HEADER + LONGEST_DATA];
    if (length > LONGEST_DATA)
        fail("too much data");
    put16(packet, command);
    put16(packet + 2, (uint16_t)length);
    memcpy(packet + HEADER, data, length);
    if (send(panel, packet, HEADER + length, MSG_NOSIGNAL) != (ssize_t)(HEADER + length))
        fail("the panel does not read");
    unheard += HEADER + length;
}

static void ask(void)
{
    const uint8_t what = ASK_MODE;
    write_packet(REQUEST, &what, 1);
}

/* By the time the answer is there everything sent before it has been handled. */
static int mode(void)
{
    ask();
    int code = report(BUSY_MS);
    if (code < 0)
        fail("the panel does not answer; another supervisor may have taken the link");
    unheard = 0;
    return code;
}

static void send_packet(uint16_t command, const void *data, size_t length)
{
    if (unheard + HEADER + length > UNHEARD)
        mode();
    write_packet(command, data, length);
}

static void send_byte(uint16_t command, uint8_t byte)
{
    send_packet(command, &byte, 1);
}

/* The last bytes of a supervisor that died may spoil the first packet, so ask until an answer comes. */
static void begin(const char *address)
{
    struct sockaddr_in to = {.sin_family = AF_INET, .sin_port = htons(PORT)};
    const int yes = 1;
    panel = socket(AF_INET, SOCK_STREAM, 0);
    if (inet_pton(AF_INET, address, &to.sin_addr) != 1 || connect(panel, (struct sockaddr *)&to, sizeof to) != 0)
        fail("no panel there");
    setsockopt(panel, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes); /* a packet leaves at once, in one piece */
    ask();
    if (report(SOON_MS) < 0) {
        mode();
        report(SOON_MS); /* the first one may have been late, not lost */
    }
    unheard = 0;
}

static uint8_t bcd(int number)
{
    return (uint8_t)(number / 10 * 16 + number % 10);
}

static void play(const char *path, int seconds)
{
    static const uint8_t levels[] = {20, 200, 90, 5};
    static const uint8_t one_file_in_one_folder[] = {1, 0, 1, 0};
    const struct timespec quarter = {.tv_nsec = 250000000};
    send_byte(DEVICE, USB);
    send_byte(DISK_STAT, DISK_NORMAL);
    send_packet(DISK_INFO, one_file_in_one_folder, sizeof one_file_in_one_folder);
    send_byte(MODE, PLAY_ALL);
    send_packet(FILENAME, path, strlen(path));
    for (int second = 0; second < seconds; ++second) {
        const uint8_t time[] = {bcd(second / 3600), bcd(second / 60 % 60), bcd(second % 60)};
        send_packet(TIME, time, sizeof time);
        for (size_t i = 0; i < sizeof levels; ++i) {
            send_byte(LEVEL, levels[i]);
            nanosleep(&quarter, NULL);
        }
    }
    send_byte(LEVEL, 0);
    send_byte(KEY, KEY_STOP);
}

int main(int argc, char **argv)
{
    if (argc < 3 || argc > 4)
        fail("say an address, a file and, if you like, how many seconds");
    char *path = realpath(argv[2], NULL);
    if (!path)
        fail("no such file");
    begin(argv[1]);
    printf("before: %d\n", mode());
    play(path, argc == 4 ? atoi(argv[3]) : 5);
    printf("after: %d\n", mode());
    free(path);
    return 0;
}

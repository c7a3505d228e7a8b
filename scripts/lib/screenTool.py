#!/usr/bin/env python3
"""What a screen without a window manager and with a plain keyboard lacks.

    screenTool.py close WINDOW    asks a window to close, as the button in its frame does
    screenTool.py keys TEXT       gives every character of a text a key of its own

With the keys there, typing Chinese does not depend on how soon the program notices a change of the keyboard.
"""
import ctypes
import sys

CLIENT_MESSAGE = 33
UNICODE_KEYSYMS = 0x01000000  # Added to a code point it is the symbol of a key.


class ClientMessage(ctypes.Structure):
    """XClientMessageEvent, filled up to the size of an XEvent."""

    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 24)]


def library():
    x11 = ctypes.CDLL("libX11.so.6")
    pointer, number = ctypes.c_void_p, ctypes.c_int
    x11.XOpenDisplay.restype = pointer
    x11.XCloseDisplay.argtypes = [pointer]  # Flushes what was sent.
    x11.XInternAtom.restype = ctypes.c_ulong
    x11.XInternAtom.argtypes = [pointer, ctypes.c_char_p, number]
    x11.XSendEvent.argtypes = [pointer, ctypes.c_ulong, number, ctypes.c_long, ctypes.POINTER(ClientMessage)]
    x11.XDisplayKeycodes.argtypes = [pointer, ctypes.POINTER(number), ctypes.POINTER(number)]
    x11.XGetKeyboardMapping.restype = ctypes.POINTER(ctypes.c_ulong)
    x11.XGetKeyboardMapping.argtypes = [pointer, ctypes.c_ubyte, number, ctypes.POINTER(number)]
    x11.XChangeKeyboardMapping.argtypes = [pointer, number, number, ctypes.POINTER(ctypes.c_ulong), number]
    return x11


def close(x11, display, window):
    event = ClientMessage(type=CLIENT_MESSAGE, window=int(window), format=32)
    event.message_type = x11.XInternAtom(display, b"WM_PROTOCOLS", 0)
    event.data[0] = x11.XInternAtom(display, b"WM_DELETE_WINDOW", 0)
    return x11.XSendEvent(display, int(window), 0, 0, ctypes.byref(event)) != 0


def free_keys(x11, display):
    lowest, highest, width = ctypes.c_int(), ctypes.c_int(), ctypes.c_int()
    x11.XDisplayKeycodes(display, ctypes.byref(lowest), ctypes.byref(highest))
    count = highest.value - lowest.value + 1
    symbols = x11.XGetKeyboardMapping(display, lowest.value, count, ctypes.byref(width))
    return [lowest.value + key for key in range(count)
            if not any(symbols[key * width.value:(key + 1) * width.value])]


def give_keys(x11, display, text):
    wanted = sorted({character for character in text if ord(character) > 0xFF})
    keys = free_keys(x11, display)
    if len(keys) < len(wanted):
        return False
    for key, character in zip(keys, wanted):
        symbol = UNICODE_KEYSYMS + ord(character)
        x11.XChangeKeyboardMapping(display, key, 2, (ctypes.c_ulong * 2)(symbol, symbol), 1)
    return True


def main():
    x11 = library()
    display = x11.XOpenDisplay(None)
    if not display or len(sys.argv) != 3:
        return 1
    done = {"close": close, "keys": give_keys}[sys.argv[1]](x11, display, sys.argv[2])
    x11.XCloseDisplay(display)
    return 0 if done else 1


if __name__ == "__main__":
    sys.exit(main())

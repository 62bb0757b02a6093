"""What an application sees when the controller misbehaves, rehearsed on the simulator's
fault injection: each fault changes one reply to get_angles, and each attempt is a new
session, because after a transport failure a session keeps failing until it is replaced."""
import time

import tavclient

CHANNEL = ("can0", "can", "canopen", 1, 500000)


def attempt(simulator, what, fault=None):
    if fault:
        simulator.add_fault(fault)
    start = time.monotonic()
    code = 0
    with tavclient.Robot() as robot:
        try:
            robot.RobotLogin(simulator.host, simulator.port)
            robot.Setup("arm", CHANNEL, tavclient.Setup_Mode.Virtual)
            robot.get_angles(1)
        except tavclient.RobotError as error:
            code = error.code
    took = (time.monotonic() - start) * 1000
    print(f"{what:<44} -> code {code} ({tavclient.event_text(code)}) after {took:.0f} ms")


def main():
    with tavclient.Simulator() as simulator:
        attempt(simulator, "no fault")
        attempt(simulator, "the reply 300 ms late", "delay,on=get_angles,ms=300")
        attempt(simulator, "the reply in 3 pieces", "split,on=get_angles,pieces=3,ms=20")
        attempt(simulator, "an Error message (code 7) instead", "error,on=get_angles,text=7")
        attempt(simulator, "the reply with a wrong checksum", "checksum,on=get_angles")
        attempt(simulator, "the connection closed instead", "close,on=get_angles")


if __name__ == "__main__":
    main()

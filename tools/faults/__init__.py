"""What tools/fault-matrix consists of.

site     the site on a line that can be told to fail, and what it counts
answers  the faults that a site, a proxy or a line may have, each as an answer
machine  the computer: folders, disks, names, cable, and what was written where
player   the hands at the installer's window
kinds    the table of all kinds of fault
point    one try: a fault, a run, and what must hold after it
lane     many tries on one machine, as another process asks for them
report   the table
"""

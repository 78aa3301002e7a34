# The repairs of GNUstep's own classes, one file each.
set(gnustep_sources)

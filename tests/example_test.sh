#!/bin/sh
# Runs an example program and compares what it prints. Usage: example_test.sh SAMPLE_DIRECTORY PROGRAM...
# The geocentric values are those of PROJ:
#   echo 52.5 13.4 100 | cct -d 4 +proj=pipeline +step +proj=axisswap +order=2,1 +step +proj=unitconvert +xy_in=deg
#     +xy_out=rad +step +proj=cart +ellps=bessel +step +proj=helmert +exact +convention=coordinate_frame +x=598.1
#     +y=73.7 +z=418.2 +rx=-0.202 +ry=-0.045 +rz=2.455 +s=6.7
sample=$1
shift
printed=$("$@" "$sample") || exit
printf '%s\n' "$printed" | sed 's/\r$//' | diff "$(dirname "$0")/data/example.txt" -

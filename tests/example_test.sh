#!/bin/sh
# Runs an example program and compares what it prints. Usage: example_test.sh [NAME] SAMPLE_DIRECTORY PROGRAM...
# NAME is that of the expected output in tests/data/: example, or many_points.
# The geocentric values are those of PROJ:
#   echo 52.5 13.4 100 | cct -d 4 +proj=pipeline +step +proj=axisswap +order=2,1 +step +proj=unitconvert +xy_in=deg
#     +xy_out=rad +step +proj=cart +ellps=bessel +step +proj=helmert +exact +convention=coordinate_frame +x=598.1
#     +y=73.7 +z=418.2 +rx=-0.202 +ry=-0.045 +rz=2.455 +s=6.7
# Those of many_points too, between +proj=tmerc with the strips' meridians: for Hamburg
#   echo 3566003.6568 5935902.0197 6 | cct -d 4 +proj=pipeline +step +inv +proj=tmerc +lon_0=9 +x_0=3500000
#     +ellps=bessel +step +proj=cart +ellps=bessel +step +proj=helmert (as above) +step +inv +proj=cart +ellps=GRS80
#     +step +proj=tmerc +lon_0=9 +k_0=0.9996 +x_0=32500000 +ellps=GRS80 +step +proj=axisswap +order=2,1
expected=example
case $1 in
example | many_points)
    expected=$1
    shift
    ;;
esac
sample=$1
shift
printed=$("$@" "$sample") || exit
printf '%s\n' "$printed" | sed 's/\r$//' | diff "$(dirname "$0")/data/$expected.txt" -

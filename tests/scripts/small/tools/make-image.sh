#!/bin/sh
echo an image >"$1"

#!/bin/sh
# A print service of its own with one queue, "capture", that prints into files.
#
#   print_queue.sh DIR
#
# DIR is absolute, and every user may enter it. The jobs are in DIR/jobs as NUMBER-TITLE.pdf; clients
# find the service by CUPS_SERVER=DIR/state/sock. Stays in the foreground until killed; DIR/ready
# says that it takes jobs.
set -eu
dir=$1
binaries=$(dirname "$(dpkg -L cups-daemon | grep -m1 '/backend$')")
mkdir -p "$dir/spool/tmp" "$dir/cache" "$dir/state" "$dir/log" "$dir/jobs" "$dir/bin/backend"
for folder in "$binaries"/*; do
    [ "${folder##*/}" = backend ] || ln -sfn "$folder" "$dir/bin/${folder##*/}"
done
cat > "$dir/bin/backend/capture" << 'END'
#!/bin/sh
[ $# = 0 ] && { echo 'direct capture "Unknown" "capture"'; exit 0; }
cat ${6:+"$6"} > "${DEVICE_URI#capture:}/$1-$3.pdf"
END
chmod 755 "$dir" "$dir/bin/backend/capture"
chmod 1777 "$dir/spool/tmp"
chmod 777 "$dir/jobs"
cat > "$dir/cups-files.conf" << END
ServerRoot $dir
RequestRoot $dir/spool
TempDir $dir/spool/tmp
CacheDir $dir/cache
StateDir $dir/state
AccessLog $dir/log/access
ErrorLog $dir/log/error
PageLog $dir/log/page
ServerBin $dir/bin
END
cat > "$dir/cupsd.conf" << END
Listen $dir/state/sock
Browsing Off
DefaultAuthType None
WebInterface No
<Location />
  Allow all
</Location>
<Policy default>
  <Limit All>
    Allow all
  </Limit>
</Policy>
END
PATH=$PATH:/usr/sbin
cupsd -f -c "$dir/cupsd.conf" -s "$dir/cups-files.conf" &
service=$!
trap 'kill $service 2>/dev/null; wait' EXIT
trap 'exit 0' TERM INT
export CUPS_SERVER=$dir/state/sock
until lpstat -r 2>/dev/null | grep -q 'is running'; do
    kill -0 $service || exit 1
    sleep .05
done
lpadmin -p capture -E -v "capture:$dir/jobs" -m raw 2>/dev/null
touch "$dir/ready"
wait $service

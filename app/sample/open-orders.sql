select o.order_no, o.ordered_on, c.name, c.city, o.total
from orders o
  join customers c on c.customer_no = o.customer_no
where o.status = 'open'
order by o.ordered_on desc, o.order_no desc
